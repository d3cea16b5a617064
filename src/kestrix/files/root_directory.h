#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <utility>

struct stat;

namespace kestrix::index {

/// Owns an open file descriptor, or none (-1).
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { reset(); }

  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }
  void reset();
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

/// What tells, without reading it, that a file is still the one that was read.
///
/// The time of the last status change cannot be set by a program, so an edit that restores size and
/// modification time still shows.
struct FileStamp {
  std::int64_t size = 0;
  std::int64_t modified_ns = 0;
  std::int64_t changed_ns = 0;
  std::uint64_t inode = 0;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp stamp_of(const struct stat& status);

/// The repository's directory. Everything below it is opened through it, and nothing outside can be
/// reached: no symbolic link is followed, not even one that takes a directory's place while we
/// look. Immutable; safe to use from several threads.
class RootDirectory {
 public:
  /// Throws `Error`, which names `path`, when it is not a directory.
  explicit RootDirectory(const std::filesystem::path& path);

  /// Absolute, without symbolic links.
  const std::filesystem::path& path() const { return path_; }

  /// Opens a path below the root ("" is the root itself) with the flags of open(2). No descriptor
  /// on failure; errno says why.
  FileDescriptor open(std::string_view relative, int flags) const;

 private:
  FileDescriptor open_step_by_step(std::string_view relative, int flags) const;

  std::filesystem::path path_;
  FileDescriptor fd_;
};

}  // namespace kestrix::index
