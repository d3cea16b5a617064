#include "kestrix/files/root_directory.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

constexpr int kAlways = O_CLOEXEC | O_NOFOLLOW;

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

std::filesystem::path real_path(const std::filesystem::path& path) {
  std::error_code failure;
  auto result = std::filesystem::canonical(path, failure);
  if (failure) throw Error(fmt::format("{}: {}", path.native(), failure.message()));
  return result;
}

int open_beneath(int directory, const char* path, int flags) {
  open_how how{};
  how.flags = static_cast<std::uint64_t>(flags | kAlways);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
  return static_cast<int>(syscall(SYS_openat2, directory, path, &how, sizeof how));
}

// Kernels before 5.6 and some sandboxes lack openat2, and it takes no path beyond PATH_MAX.
bool needs_steps(int error) { return error == ENOSYS || error == EPERM || error == ENAMETOOLONG; }

}  // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    reset();
    fd_ = other.release();
  }
  return *this;
}

void FileDescriptor::reset() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

FileStamp stamp_of(const struct stat& status) {
  return {status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim), status.st_ino};
}

RootDirectory::RootDirectory(const std::filesystem::path& path)
    : path_(real_path(path)), fd_(::open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
  if (!fd_)
    throw Error(fmt::format("{}: {}", path.native(), std::generic_category().message(errno)));
}

FileDescriptor RootDirectory::open(std::string_view relative, int flags) const {
  const std::string path(relative.empty() ? "." : relative);
  FileDescriptor opened(open_beneath(fd_.get(), path.c_str(), flags));
  if (!opened && needs_steps(errno)) return open_step_by_step(path, flags);
  return opened;
}

FileDescriptor RootDirectory::open_step_by_step(std::string_view relative, int flags) const {
  FileDescriptor directory;
  int current = fd_.get();
  for (auto slash = relative.find('/'); slash != relative.npos; slash = relative.find('/')) {
    const std::string name(relative.substr(0, slash));
    directory = FileDescriptor(::openat(current, name.c_str(), O_PATH | O_DIRECTORY | kAlways));
    if (!directory) return {};
    current = directory.get();
    relative.remove_prefix(slash + 1);
  }
  return FileDescriptor(::openat(current, std::string(relative).c_str(), flags | kAlways));
}

}  // namespace kestrix::index
