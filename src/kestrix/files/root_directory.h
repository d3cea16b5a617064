#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "kestrix/files/file_descriptor.h"

struct stat;

namespace kestrix::index {

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

/// A directory below which files are opened: the repository's, or one of git's. This is the one
/// place that opens a file of a repository. Nothing outside can be reached: no symbolic link is
/// followed, not even one that takes a directory's place while we look, and how long the
/// directory's own path is does not matter. Immutable; safe to use from several threads.
class RootDirectory {
 public:
  /// Follows links on the way to the directory itself. Throws `Error`, which names `path`, when it
  /// is not a directory.
  explicit RootDirectory(const std::filesystem::path& path);
  /// The same; none when it is not a directory.
  static std::optional<RootDirectory> find(const std::filesystem::path& path);

  /// Absolute, without symbolic links.
  const std::filesystem::path& path() const { return path_; }

  /// Opens a path below the root ("" is the root itself) with the flags of open(2). No descriptor
  /// on failure; errno says why. Throws `Error` where the process or the system is out of
  /// descriptors or memory: that says nothing of the file.
  FileDescriptor open(std::string_view relative, int flags) const;

  /// A directory below the root as a root of its own; none when no link-free path leads to one.
  std::optional<RootDirectory> below(std::string_view relative) const;

 private:
  RootDirectory(std::filesystem::path path, FileDescriptor fd);

  FileDescriptor open_in_steps(std::string_view relative, int flags) const;

  std::filesystem::path path_;
  FileDescriptor fd_;
};

}  // namespace kestrix::index
