#include "kestrix/host/evidence/name_words.h"

#include <algorithm>

#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_word(char c) { return ascii::is_alpha(c) || ascii::is_digit(c); }

// Where the word that starts at `at` ends: "HTTPError" is two, "errors2" one.
std::size_t end_of_word(std::string_view name, std::size_t at) {
  std::size_t end = at + 1;
  while (end < name.size() && is_word(name[end])) {
    const bool after_lower = is_upper(name[end]) && !is_upper(name[end - 1]);
    const bool before_lower = is_upper(name[end]) && end + 1 < name.size() &&
                              is_word(name[end + 1]) && !is_upper(name[end + 1]);
    if (after_lower || before_lower) break;
    ++end;
  }
  return end;
}

bool is_one_of(std::string_view word, std::span<const std::string_view> words) {
  const auto same = [word](std::string_view each) {
    return std::ranges::equal(word, each, {}, ascii::lower);
  };
  return std::ranges::any_of(words, same);
}

// Calls `visit(word)` until it returns true; whether it did.
template <class Visit>
bool any_word(std::string_view name, Visit visit) {
  for (std::size_t at = 0; at < name.size();) {
    if (!is_word(name[at])) {
      ++at;
      continue;
    }
    const std::size_t end = end_of_word(name, at);
    if (visit(name.substr(at, end - at))) return true;
    at = end;
  }
  return false;
}

}  // namespace

bool has_word(std::string_view name, std::span<const std::string_view> words) {
  return any_word(name, [words](std::string_view word) { return is_one_of(word, words); });
}

bool ends_with_word(std::string_view name, std::span<const std::string_view> words,
                    std::span<const std::string_view> tails) {
  bool ends = false;
  any_word(name, [&](std::string_view word) {
    ends = is_one_of(word, words) || (ends && is_one_of(word, tails));
    return false;
  });
  return ends;
}

}  // namespace kestrix
