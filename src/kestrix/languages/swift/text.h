#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestrix/syntax/lexis.h"

/// What can be told of Swift's text without its grammar.
namespace kestrix::index::swift {

const Lexis& lexis();

/// A copy of the text without what the grammar misreads and nobody needs of the tree: "try" and
/// "await", which it takes for calls with a block before "{", words of ownership, the types of
/// errors behind "throws", lines of conditional compilation, and "()" as a value.
std::optional<std::string> mask(std::string_view text);

}  // namespace kestrix::index::swift
