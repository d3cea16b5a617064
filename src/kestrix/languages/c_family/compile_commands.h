#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// Includes are looked for in each folder.
inline constexpr std::size_t kMostCommandFolders = 500;

/// The repository's own include folders in its compile_commands.json files, in the order in which
/// they appear, each once, at most so many. Absolute paths are understood by the files that they
/// are given for, so the repository may have been moved since. Malformed files add nothing.
std::vector<std::string> include_folders_of_compile_commands(const FileTable& files);

}  // namespace kestrix::index
