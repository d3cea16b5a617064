#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "kestrix/files/root_directory.h"

namespace kestrix::index {

/// Files beyond this are recorded, not parsed.
inline constexpr std::size_t kMaxParsedBytes = std::size_t{2} << 20;

enum class ReadStatus {
  kRead,
  kVanished,    ///< no longer there, or no longer a regular file
  kUnreadable,  ///< permission, an I/O error …
};

/// The start of a file.
struct FileBytes {
  ReadStatus status = ReadStatus::kRead;
  std::string bytes{};     ///< at most as many as were asked for
  FileStamp stamp{};       ///< taken before the first byte was read
  bool truncated = false;  ///< the file holds more
  bool changed = false;    ///< it was written to while it was read
};

/// Reads at most `limit` bytes of a regular file below `root`. Opens nothing else: never blocks on
/// a pipe, follows no link.
FileBytes read_file(const RootDirectory& root, std::string_view path, std::size_t limit);

/// The same for a file that may be source: all of it, but of a binary only the first 8 KiB, and of
/// one that is larger than what is parsed the first `head` bytes.
FileBytes read_source(const RootDirectory& root, std::string_view path, std::size_t head);

/// Reads at most `limit` bytes of a file of the user's own settings, which may lie anywhere.
/// Follows links; never used for a path that a repository names.
FileBytes read_users_file(const std::filesystem::path& path, std::size_t limit);

/// What was read, "" when it failed or there is more than was read.
std::string whole_text(FileBytes content);

}  // namespace kestrix::index
