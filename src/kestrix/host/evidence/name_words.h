#pragma once

#include <span>
#include <string_view>

namespace kestrix {

/// Whether one of the words that a declaration's name is made of ("findErrorHandler",
/// "error_table", "UV_ERRNO_MAP") is one of `words`, which are in lower case.
bool has_word(std::string_view name, std::span<const std::string_view> words);

/// Whether the last of its words is one of `words`, but for any of `tails` behind it
/// ("ConfigLoader", "SettingsImpl").
bool ends_with_word(std::string_view name, std::span<const std::string_view> words,
                    std::span<const std::string_view> tails);

}  // namespace kestrix
