#include "kestrix/languages/scala/text.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "kestrix/languages/jvm/lexis.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index::scala {
namespace {

constexpr std::size_t kLongestArguments = 2'000;
constexpr std::size_t kLongestHead = 500;

std::size_t skip_space(std::string_view text, std::size_t at) {
  while (at < text.size() && ascii::is_space(text[at])) ++at;
  return at;
}

// Behind the bracket that closes the one at `open`; `open` when none does.
std::size_t arguments_end(std::string_view text, std::size_t open) {
  const std::size_t limit = std::min(text.size(), open + kLongestArguments);
  std::size_t depth = 0;
  for (std::size_t at = open; at < limit; ++at) {
    if (text[at] == '(') ++depth;
    if (text[at] == ')' && --depth == 0) return at + 1;
  }
  return open;
}

// Whether a class's name, with type parameters at most, stands before `at` on the same line.
bool follows_class_name(std::string_view text, std::size_t at) {
  const std::size_t start = at - std::min(at, kLongestHead);
  std::string_view before = text.substr(start, at - start);
  before = before.substr(before.rfind('\n') + 1);
  const std::size_t word = before.rfind("class ");
  if (word == std::string_view::npos) return false;
  const std::string_view name = before.substr(word + 6);
  return name.find_first_of("({=:") == std::string_view::npos;
}

}  // namespace

const Lexis& lexis() { return jvm::kLexis; }

std::optional<std::string> mask(std::string_view text) {
  std::optional<std::string> masked;
  for (std::size_t at = text.find('@'); at != text.npos; at = text.find('@', at + 1)) {
    std::size_t end = at + 1;
    while (end < text.size() && (ascii::is_word(text[end]) || text[end] == '.')) ++end;
    if (end == at + 1 || end == text.size() || text[end] != '(') continue;
    if (!follows_class_name(text, at)) continue;
    end = arguments_end(text, end);
    if (end >= text.size() || text[skip_space(text, end)] != '(') continue;
    if (!masked) masked.emplace(text);
    for (std::size_t i = at; i < end; ++i) {
      if (text[i] != '\n') (*masked)[i] = ' ';
    }
  }
  return masked;
}

}  // namespace kestrix::index::scala
