#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace kestrix::index {

/// An index in the user's cache directory.
struct CachedIndex {
  std::filesystem::path file;
  std::string root;          ///< the directory that it is of; "" when it cannot be read
  bool orphaned = false;     ///< whether that directory is gone
  std::uint64_t size = 0;    ///< bytes, those of its companions included
  std::chrono::hours age{};  ///< since it was last written to
};

/// The indexes in the user's cache directory: those whose repository is gone first, then by path.
/// A folder that is missing has none. Throws `Error` when it cannot be read.
std::vector<CachedIndex> list_cached_indexes();

/// Removes an index and its companions. One that is already gone is no failure; throws `Error`,
/// which names the file, for any other.
void remove_cached_index(const CachedIndex& index);

}  // namespace kestrix::index
