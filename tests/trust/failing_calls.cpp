// Loaded before the C library, this makes one call of a process fail: the one whose number
// FAIL_AT gives, with the errno FAIL_ERRNO. It leaves a file FAIL_MARK behind when it did.

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>

namespace {

long number(const char* name) {
  const char* text = std::getenv(name);
  return text == nullptr ? 0 : std::atol(text);
}

bool fails() {
  static const long at = number("FAIL_AT");
  static std::atomic<long> calls = 0;
  if (at == 0 || ++calls != at) return false;
  const char* mark = std::getenv("FAIL_MARK");
  if (mark != nullptr) {
    const long made = syscall(SYS_openat, AT_FDCWD, mark, O_WRONLY | O_CREAT, 0600);
    syscall(SYS_close, made);
  }
  errno = static_cast<int>(number("FAIL_ERRNO"));
  return true;
}

template <class Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define FAILING(result, name, parameters, arguments)                \
  extern "C" result name parameters {                               \
    static const auto original = real<result(*) parameters>(#name); \
    return fails() ? static_cast<result>(-1) : original arguments;  \
  }

FAILING(ssize_t, read, (int fd, void* to, size_t size), (fd, to, size))
FAILING(ssize_t, pread, (int fd, void* to, size_t size, off_t at), (fd, to, size, at))
FAILING(ssize_t, pread64, (int fd, void* to, size_t size, off64_t at), (fd, to, size, at))
FAILING(ssize_t, pwrite64, (int fd, const void* from, size_t size, off64_t at),
        (fd, from, size, at))
FAILING(int, fstat, (int fd, struct stat* to), (fd, to))
FAILING(int, fstat64, (int fd, struct stat64* to), (fd, to))
FAILING(int, fstatat, (int fd, const char* path, struct stat* to, int flags), (fd, path, to, flags))
FAILING(int, stat, (const char* path, struct stat* to), (path, to))
FAILING(int, ftruncate64, (int fd, off64_t size), (fd, size))
FAILING(ssize_t, getdents64, (int fd, void* to, size_t size), (fd, to, size))

#define FAILING_OPEN(name, parameters, arguments)                             \
  extern "C" int name parameters {                                            \
    static const auto original = real<int (*)(const char*, int, ...)>(#name); \
    va_list rest;                                                             \
    va_start(rest, flags);                                                    \
    const auto mode = va_arg(rest, unsigned);                                 \
    va_end(rest);                                                             \
    return fails() ? -1 : original arguments;                                 \
  }

FAILING_OPEN(open, (const char* path, int flags, ...), (path, flags, mode))
FAILING_OPEN(open64, (const char* path, int flags, ...), (path, flags, mode))

extern "C" long syscall(long call, ...) {
  static const auto original = real<long (*)(long, ...)>("syscall");
  va_list rest;
  va_start(rest, call);
  long a[6];
  for (long& argument : a) argument = va_arg(rest, long);
  va_end(rest);
  if (call == SYS_openat2 && fails()) return -1;
  return original(call, a[0], a[1], a[2], a[3], a[4], a[5]);
}
