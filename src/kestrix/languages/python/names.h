#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Whether Python's standard library has a top-level module of that name.
bool is_standard_module(std::string_view name);

/// The distributions that the repository's own files require (requirements*.txt, pyproject.toml,
/// setup.cfg, setup.py), under the names by which they are usually imported: lower case, "_" for
/// "-" and ".".
std::unordered_set<std::string, SeededHash> required_distributions(const FileTable& files);

}  // namespace kestrix::index
