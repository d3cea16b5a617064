#include "kestrix/languages/code/names.h"

#include <algorithm>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_name(char c) {
  return is_letter(c) || is_digit(c) || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool is_joint(char c) { return std::string_view(".:\\?!->").find(c) != std::string_view::npos; }
bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr std::size_t kLongestTyped = 1000;  // bytes of a name with its type arguments
constexpr std::string_view kInTypes = ",[]()&'";
constexpr std::string_view kInStrings = "_./:#\\@*-$";

}  // namespace

std::optional<std::string> name_path(std::string_view text) {
  if (text.empty() || text.size() > kLongestMention) return std::nullopt;
  std::string path;
  bool gap = false;
  for (const char c : text) {
    if (is_name(c)) {
      if (gap && !path.empty()) path += '.';
      gap = false;
      path += c;
    } else if (is_joint(c)) {
      gap = true;
    } else if (!is_blank(c)) {
      return std::nullopt;
    }
  }
  if (path.empty() || is_digit(path.front())) return std::nullopt;
  return path;
}

Token token_at(std::string_view text, std::size_t start) {
  std::size_t before = start;
  while (before > 0 && is_blank(text[before - 1]) && start - before < kLongestMention) --before;
  const bool member =
      before > 0 && text[before - 1] == '.' && !(before > 1 && text[before - 2] == '.');
  const bool later = before > 1 && text.substr(before - 2, 2) == "::";
  if (member || later) return {};
  std::size_t end = start;
  const auto take_word = [&] {
    while (end < text.size() && is_name(text[end]) && end - start <= kLongestMention) ++end;
  };
  take_word();
  while (text.substr(end, 2) == "::" && end + 2 < text.size() && is_name(text[end + 2])) {
    end += 2;
    take_word();
  }
  std::size_t next = end;
  while (next < text.size() && is_blank(text[next]) && next - end < kLongestMention) ++next;
  const char follows = next < text.size() ? text[next] : '\0';
  const std::string_view rest = text.substr(next, 2);
  const bool key =
      (follows == ':' && rest != "::") || (follows == '=' && rest != "==" && rest != "=>");
  if (key) return {};
  const bool typed = before > 1 && text[before - 1] == ':' && is_name(text[before - 2]);
  return {text.substr(start, end - start), follows, typed};
}

bool starts_in_lower_case(std::string_view name) {
  return !name.empty() && ((name.front() >= 'a' && name.front() <= 'z') || name.front() == '_');
}

bool starts_in_upper_case(std::string_view name) {
  const auto first = std::ranges::find_if_not(name, is_joint);
  return first != name.end() && *first >= 'A' && *first <= 'Z';
}

std::optional<std::string> without_type_arguments(std::string_view text) {
  if (text.size() > kLongestTyped || text.find('<') == std::string_view::npos) return std::nullopt;
  std::string plain;
  std::size_t depth = 0;
  for (const char c : text) {
    if (c == '<') {
      ++depth;
    } else if (c == '>') {
      if (depth == 0) return std::nullopt;
      --depth;
    } else if (depth == 0) {
      plain += c;
    } else if (!is_name(c) && !is_joint(c) && !is_blank(c) && kInTypes.find(c) == kInTypes.npos) {
      return std::nullopt;
    }
  }
  return depth == 0 ? std::optional(std::move(plain)) : std::nullopt;
}

CalledMember called_member(std::string_view callee) {
  std::size_t end = callee.size();
  if (callee.ends_with('>')) {
    std::size_t depth = 0;
    do {
      --end;
      if (callee[end] == '>') ++depth;
      if (callee[end] == '<') --depth;
    } while (end > 0 && depth > 0 && callee.size() - end < kLongestTyped);
    if (depth > 0) return {};
  }
  std::size_t start = end;
  while (start > 0 && is_name(callee[start - 1]) && end - start < kLongestMention) --start;
  if (start == end || start < 2 || callee[start - 1] != '.') return {};
  return {callee.substr(0, start - 1), callee.substr(start, end - start)};
}

std::string_view literal_content(std::string_view literal) {
  const std::size_t open = literal.find_first_of("\"'`");
  if (open == std::string_view::npos) {
    return literal.starts_with(':') ? literal.substr(1) : std::string_view();
  }
  const char quote = literal[open];
  std::size_t marks = 1;
  if (literal.substr(open).starts_with(std::string(3, quote)) && literal.size() >= open + 6)
    marks = 3;
  const std::size_t close = literal.rfind(quote);
  if (close < open + 2 * marks - 1) return {};
  return literal.substr(open + marks, close + 1 - marks - (open + marks));
}

bool may_name_something(std::string_view content) {
  if (content.size() < 3 || content.size() > kLongestMention) return false;
  bool joint = false;
  bool upper = false;
  bool letter = false;
  for (const char c : content) {
    letter |= is_letter(c);
    upper |= c >= 'A' && c <= 'Z';
    joint |= kInStrings.find(c) != std::string_view::npos;
    if (!is_letter(c) && !is_digit(c) && kInStrings.find(c) == std::string_view::npos) return false;
  }
  return letter && (joint || upper);
}

}  // namespace kestrix::index
