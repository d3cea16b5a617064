#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "kestrix/files/skip_counts.h"

namespace kestrix {

/// Why an answer about the repository may be incomplete, a line each, by what was left out of its
/// index: a bare repository, submodules, files that are not checked out, cannot be read or parsed.
std::vector<std::string> warnings_of(const std::filesystem::path& root,
                                     const index::SkipCounts& left_out);

}  // namespace kestrix
