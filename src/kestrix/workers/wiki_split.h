#pragma once

#include <string>
#include <string_view>

namespace kestrix {

/// The word that a file's name contributes to a page's topic: its name without directory and
/// without its last suffix, in its own case. A dot file keeps its whole name, and so does a name
/// that ends in its only dot. Package files such as "__init__.py" give a word that begins with
/// "__", which no topic takes.
std::string stem(std::string_view path);

}  // namespace kestrix
