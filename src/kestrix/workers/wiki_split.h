#pragma once

#include <string>
#include <string_view>

namespace kestrix {

/// The word that a file's name contributes to a page's topic: its name without directory and
/// without its last suffix. A dot file keeps its whole name.
std::string stem(std::string_view path);

}  // namespace kestrix
