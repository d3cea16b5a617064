#pragma once

#include <cstddef>
#include <string_view>

// Letters of the ASCII range, whatever the locale. Paths and source are bytes: what lies outside
// that range is left as it is.

namespace kestrix::ascii {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool is_lower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool is_alpha(char c) { return lower(c) >= 'a' && lower(c) <= 'z'; }
/// A letter, a digit or "_": what names in source are made of.
constexpr bool is_word(char c) { return is_alpha(c) || is_digit(c) || c == '_'; }
constexpr bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// `text` without the white space around it.
constexpr std::string_view trim(std::string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
}

/// Whether `text` is `lower_case`, which holds no capital, in any case.
constexpr bool equals(std::string_view text, std::string_view lower_case) {
  if (text.size() != lower_case.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (lower(text[i]) != lower_case[i]) return false;
  }
  return true;
}

constexpr bool ends_with(std::string_view text, std::string_view lower_case) {
  return text.size() >= lower_case.size() &&
         equals(text.substr(text.size() - lower_case.size()), lower_case);
}

}  // namespace kestrix::ascii
