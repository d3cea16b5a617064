#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kestrix {

/// The candidate that `word` is most likely a slip of: few letters apart, or what it begins; the
/// first among equals. "" when none is near.
std::string nearest(std::string_view word, std::span<const std::string> candidates);

/// "; did you mean NEAREST?", or "".
std::string did_you_mean(std::string_view word, std::span<const std::string> candidates);

}  // namespace kestrix
