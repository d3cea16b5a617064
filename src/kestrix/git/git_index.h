#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// What a git index knows of a tracked file beside its path.
struct TrackedState {
  std::int64_t modified_ns = 0;
  std::int64_t changed_ns = 0;
  std::uint32_t size = 0;  ///< modulo 4 GiB; 0 also where the stamp must not be trusted
  bool is_link = false;
  bool left_out = false;              ///< by a sparse checkout
  bool is_unmerged = false;           ///< in conflict, or only announced
  std::array<std::uint8_t, 20> id{};  ///< of its content; of a longer id the start
};

/// The paths that a git index lists, as they stand in it: ascending by bytes.
struct GitIndexPaths {
  std::vector<std::string> files;       ///< tracked files and links; a path in conflict once
  std::vector<std::string> submodules;  ///< places of submodules
  std::vector<std::string> left_out;  ///< folders that a sparse checkout leaves out, ending in "/"
  std::vector<TrackedState> states;   ///< one a file, where they were asked for
  bool is_a_tree = false;  ///< whether it is known to hold a tree as a whole: nothing was added or
                           ///< removed since it was written from a commit, or to one
};

/// Reads a git index (versions 2 to 4) for its paths below `prefix`, which ends in "/" or is empty
/// and is taken off them. The checksum is not looked at, as git does not either. None when the
/// content is damaged or an index split in two files.
///
/// `id_bytes` is the length of an object id: 20, or 32 in repositories that use SHA-256.
std::optional<GitIndexPaths> read_git_index(std::string_view content, std::string_view prefix,
                                            std::size_t id_bytes, bool with_states = false);

}  // namespace kestrix::index
