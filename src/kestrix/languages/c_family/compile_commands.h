#pragma once

#include <string>
#include <vector>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// The repository's own include folders in its compile_commands.json files, in the order in which
/// they appear, each once, at most 500. Absolute paths are understood by the files that they are
/// given for, so the repository may have been moved since. Malformed files add nothing.
std::vector<std::string> include_folders_of_compile_commands(const FileTable& files);

}  // namespace kestrix::index
