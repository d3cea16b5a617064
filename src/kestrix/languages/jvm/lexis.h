#pragma once

#include <array>
#include <string_view>

#include "kestrix/syntax/lexis.h"

namespace kestrix::index::jvm {

inline constexpr std::array<std::string_view, 1> kComments = {"//"};
inline constexpr std::array kStrings = {
    StringStyle{
        .open = R"(""")", .close = R"(""")", .multiline = true, .escapes = false, .splice = "${"},
    StringStyle{.open = "\"", .close = "\"", .splice = "${"},
    StringStyle{.open = "`", .close = "`", .escapes = false},  // a name of many words
};

/// Of Kotlin and Scala.
inline constexpr Lexis kLexis = {.line_comments = kComments,
                                 .block_open = "/*",
                                 .block_close = "*/",
                                 .nested_blocks = true,
                                 .strings = kStrings,
                                 .char_literals = true};

}  // namespace kestrix::index::jvm
