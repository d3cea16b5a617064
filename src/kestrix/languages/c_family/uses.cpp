#include "kestrix/languages/c_family/uses.h"

#include <algorithm>
#include <array>

#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/words.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 85> kKeywords = {"NULL",
                                                        "__attribute__",
                                                        "alignas",
                                                        "alignof",
                                                        "auto",
                                                        "bool",
                                                        "break",
                                                        "case",
                                                        "catch",
                                                        "char",
                                                        "class",
                                                        "concept",
                                                        "const",
                                                        "const_cast",
                                                        "consteval",
                                                        "constexpr",
                                                        "constinit",
                                                        "continue",
                                                        "decltype",
                                                        "default",
                                                        "define",
                                                        "defined",
                                                        "delete",
                                                        "do",
                                                        "double",
                                                        "dynamic_cast",
                                                        "elif",
                                                        "else",
                                                        "endif",
                                                        "enum",
                                                        "error",
                                                        "explicit",
                                                        "extern",
                                                        "false",
                                                        "final",
                                                        "float",
                                                        "for",
                                                        "friend",
                                                        "goto",
                                                        "if",
                                                        "ifdef",
                                                        "ifndef",
                                                        "include",
                                                        "inline",
                                                        "int",
                                                        "long",
                                                        "mutable",
                                                        "namespace",
                                                        "new",
                                                        "noexcept",
                                                        "nullptr",
                                                        "operator",
                                                        "override",
                                                        "pragma",
                                                        "private",
                                                        "protected",
                                                        "public",
                                                        "register",
                                                        "reinterpret_cast",
                                                        "requires",
                                                        "restrict",
                                                        "return",
                                                        "short",
                                                        "signed",
                                                        "sizeof",
                                                        "static",
                                                        "static_assert",
                                                        "static_cast",
                                                        "std",
                                                        "struct",
                                                        "switch",
                                                        "template",
                                                        "this",
                                                        "throw",
                                                        "true",
                                                        "typedef",
                                                        "typename",
                                                        "undef",
                                                        "union",
                                                        "unsigned",
                                                        "using",
                                                        "virtual",
                                                        "void",
                                                        "volatile",
                                                        "while"};

bool is_letter(char c) { return ascii::is_alpha(c) || c == '_'; }

// The first byte behind `at` that is no blank; NUL at the end.
char after_blanks(std::string_view text, std::size_t& at) {
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  return at < text.size() ? text[at] : '\0';
}

// "Name(", "Name::", "Name<", "Name *x", "Name x", "Name&)".
bool stands_before_use(std::string_view text, std::size_t at) {
  const std::size_t end = at;
  const char next = after_blanks(text, at);
  if (next == '(') return true;
  if (next == ':' || next == '<')
    return at == end && (next == '<' || text.substr(at + 1, 1) == ":");
  if (next != '*' && next != '&') return at > end && is_letter(next);
  while (at < text.size() && (text[at] == '*' || text[at] == '&')) ++at;
  const char last = after_blanks(text, at);
  return is_letter(last) || last == ')' || last == ',' || last == '>';
}

bool is_use(std::string_view text, const Word& word) {
  if (word.member || word.text.size() < 3) return false;
  if (word.offset > 1 && text[word.offset - 1] == '>' && text[word.offset - 2] == '-') return false;
  if (std::ranges::binary_search(kKeywords, word.text)) return false;
  const char first = word.text.front();
  return (first >= 'A' && first <= 'Z') || stands_before_use(text, word.offset + word.text.size());
}

}  // namespace

std::vector<NameUse> names_used(std::string_view text, const Lexis& lexis,
                                const std::vector<std::string>& declared) {
  WordCounts counts;
  counts.reset(text.size());
  WordScanner scanner(text, lexis);
  for (Word word; scanner.next(word);) {
    if (is_use(text, word)) counts.add(word.text);
  }
  std::vector<NameUse> uses;
  for (const WordCounts::Entry& entry : counts.entries()) {
    if (std::ranges::binary_search(declared, entry.word)) continue;
    uses.push_back({std::string(entry.word), entry.count});
  }
  return uses;
}

}  // namespace kestrix::index
