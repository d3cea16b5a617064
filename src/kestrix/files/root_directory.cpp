#include "kestrix/files/root_directory.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>
#include <system_error>
#include <utility>

#include "kestrix/files/shortage.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

constexpr int kAlways = O_CLOEXEC | O_NOFOLLOW;
constexpr int kDirectory = O_PATH | O_DIRECTORY;

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

int open_beneath(int directory, const std::string& path, int flags) {
  open_how how{};
  how.flags = static_cast<std::uint64_t>(flags | kAlways);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
  return static_cast<int>(syscall(SYS_openat2, directory, path.c_str(), &how, sizeof how));
}

// Kernels before 5.6 and some sandboxes lack openat2.
bool lacks_openat2(int error) { return error == ENOSYS || error == EPERM; }

FileDescriptor open_piece_by_piece(int directory, std::string_view path, int flags) {
  FileDescriptor held;
  for (auto slash = path.find('/'); slash != path.npos; slash = path.find('/')) {
    const std::string name(path.substr(0, slash));
    if (name == "..") {
      errno = EXDEV;
      return {};
    }
    held = FileDescriptor(::openat(directory, name.c_str(), kDirectory | kAlways));
    if (!held) return {};
    directory = held.get();
    path.remove_prefix(slash + 1);
  }
  return FileDescriptor(::openat(directory, std::string(path).c_str(), flags | kAlways));
}

FileDescriptor open_short(int directory, std::string_view path, int flags) {
  FileDescriptor opened(open_beneath(directory, std::string(path), flags));
  if (!opened && lacks_openat2(errno)) return open_piece_by_piece(directory, path, flags);
  return opened;
}

// As much of a path as one call takes: all of it, or whole pieces.
std::size_t step_of(std::string_view path) {
  if (path.size() < PATH_MAX) return path.size();
  return std::min(path.rfind('/', PATH_MAX - 1), path.size());
}

std::filesystem::path real_path(const std::filesystem::path& path) {
  std::error_code failure;
  auto result = std::filesystem::canonical(path, failure);
  if (failure) throw Error(fmt::format("{}: {}", path.native(), failure.message()));
  return result;
}

}  // namespace

FileStamp stamp_of(const struct stat& status) {
  return {status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim), status.st_ino};
}

RootDirectory::RootDirectory(std::filesystem::path path, FileDescriptor fd)
    : path_(std::move(path)), fd_(std::move(fd)) {}

RootDirectory::RootDirectory(const std::filesystem::path& path)
    : path_(real_path(path)), fd_(::open(path_.c_str(), kDirectory | kAlways)) {
  if (!fd_)
    throw Error(fmt::format("{}: {}", path.native(), std::generic_category().message(errno)));
}

std::optional<RootDirectory> RootDirectory::find(const std::filesystem::path& path) {
  std::error_code failure;
  auto real = std::filesystem::canonical(path, failure);
  if (failure) return std::nullopt;
  FileDescriptor fd(::open(real.c_str(), kDirectory | kAlways));
  if (!fd) check_shortage(path.native(), errno);
  if (!fd) return std::nullopt;
  return RootDirectory(std::move(real), std::move(fd));
}

FileDescriptor RootDirectory::open(std::string_view relative, int flags) const {
  FileDescriptor opened;
  do {
    opened = open_in_steps(relative.empty() ? "." : relative, flags);
  } while (!opened && errno == EINTR);
  if (!opened) check_shortage((path_ / relative).native(), errno);
  return opened;
}

std::optional<RootDirectory> RootDirectory::below(std::string_view relative) const {
  FileDescriptor fd = open(relative, kDirectory);
  if (!fd) return std::nullopt;
  return RootDirectory(relative.empty() ? path_ : path_ / relative, std::move(fd));
}

// A path of any length, in steps that the system takes.
FileDescriptor RootDirectory::open_in_steps(std::string_view relative, int flags) const {
  FileDescriptor held;
  int directory = fd_.get();
  for (std::size_t step = step_of(relative); step < relative.size(); step = step_of(relative)) {
    held = open_short(directory, relative.substr(0, step), kDirectory);
    if (!held) return {};
    directory = held.get();
    relative.remove_prefix(step + 1);
  }
  return open_short(directory, relative, flags);
}

}  // namespace kestrix::index
