#pragma once

#include <string>
#include <string_view>

namespace kestrix::index {
struct Language;
}

namespace kestrix::test {

/// What this program's own matcher and the parser library's cursor find differently when the
/// language's query is tried on every node of the text's tree; "" when they agree.
///
/// Both are asked for the captures of each pattern rooted at each node. The library drops some of
/// the ways in which a pattern fits one node when others capture more, so every match of the
/// library must be one of this program's, and a pattern that fits for one fits for the other.
std::string query_difference(const index::Language& language, std::string_view text);

}  // namespace kestrix::test
