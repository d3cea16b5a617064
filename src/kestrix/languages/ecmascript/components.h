#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrix::index::ecmascript {

/// Blanks all of a single-file component but its scripts and, in the markup, the names of elements
/// that start in upper case, each as a statement of its own: what the grammar of scripts can read,
/// of equal length and with the same lines. One pass.
std::optional<std::string> mask_markup(std::string_view text);

}  // namespace kestrix::index::ecmascript
