#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace kestrix::index {

/// Where the index of a repository lies by default: in page-sources/ below $XDG_CACHE_HOME, else
/// below ~/.cache, under the directory's name and a hash of its whole path.
///
/// `root` is absolute and without symbolic links. Throws `Error` when no home is known, or when the
/// place would lie inside the repository.
/// Each `choice` of files has a name of its own; "" is that of all files.
std::filesystem::path default_index_path(const std::filesystem::path& root,
                                         std::string_view choice = {});

/// The directory that default indexes lie in, whether it exists or not. Throws `Error` when no home
/// is known.
std::filesystem::path default_index_folder();

/// Creates the directories above a default index; the last is for the user alone. Throws `Error`,
/// which names the one that cannot be made.
void prepare_default_place(const std::filesystem::path& index);

}  // namespace kestrix::index
