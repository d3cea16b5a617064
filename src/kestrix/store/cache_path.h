#pragma once

#include <filesystem>
#include <optional>

namespace kestrix::index {

/// Where the index of a repository lies by default: in page-sources/ below $XDG_CACHE_HOME, else
/// below ~/.cache, under the directory's name and a hash of its whole path.
///
/// `root` is absolute and without symbolic links. Throws `Error` when no home is known, or when the
/// place would lie inside the repository.
std::filesystem::path default_index_path(const std::filesystem::path& root);

/// Creates the directories above a default index; the last is for the user alone. Throws `Error`,
/// which names the one that cannot be made.
void prepare_default_place(const std::filesystem::path& index);

}  // namespace kestrix::index
