#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "kestrix/text/ascii.h"

namespace kestrix::index {

inline std::string_view word_at(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && ascii::is_word(text[end])) ++end;
  return text.substr(std::min(at, text.size()), end - std::min(at, text.size()));
}

inline std::size_t skip_blanks(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(" \t", at), text.size());
}

inline std::size_t skip_space(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(" \t\r\n", at), text.size());
}

/// Behind "<…>" or "(…)" when it stands at `at` and closes soon; else `at`.
inline std::size_t skip_bracketed(std::string_view text, std::size_t at, char open, char close) {
  constexpr std::size_t kLongest = 200;
  if (at >= text.size() || text[at] != open) return at;
  std::size_t depth = 0;
  const std::size_t end = std::min(text.size(), at + kLongest);
  for (std::size_t i = at; i < end; ++i) {
    if (text[i] == open) ++depth;
    if (text[i] == close && --depth == 0) return i + 1;
  }
  return at;
}

}  // namespace kestrix::index
