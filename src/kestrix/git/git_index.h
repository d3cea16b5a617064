#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// The paths that a git index lists, as they stand in it: ascending by bytes.
struct GitIndexPaths {
  std::vector<std::string> files;       ///< tracked files and links; a path in conflict once
  std::vector<std::string> submodules;  ///< places of submodules
};

/// Reads a git index (versions 2 to 4) for its paths below `prefix`, which ends in "/" or is empty
/// and is taken off them. The checksum is not looked at, as git does not either. None when the
/// content is damaged or an index split in two files.
///
/// `id_bytes` is the length of an object id: 20, or 32 in repositories that use SHA-256.
std::optional<GitIndexPaths> read_git_index(std::string_view content, std::string_view prefix,
                                            std::size_t id_bytes);

}  // namespace kestrix::index
