#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix {

/// The patterns that one with alternatives in braces stands for: "a{b,{c,d}}" for "ab", "ac" and
/// "ad", in any order. A "\" takes the next character literally; braces that hold no comma or do
/// not close are plain text. None when a pattern with braces is longer than 4,096 bytes or stands
/// for more than 256.
std::optional<std::vector<std::string>> expand_braces(std::string_view pattern);

}  // namespace kestrix
