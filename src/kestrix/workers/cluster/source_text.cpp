#include "kestrix/workers/cluster/source_text.h"

#include <algorithm>
#include <array>

#include "kestrix/utils/ascii.h"

namespace kestrix {
namespace {

constexpr std::size_t kLongestBlock = 16384;
constexpr auto kCommentMarks =
    std::to_array<std::string_view>({"//", "#", "*", "/*", "--", "<!--", ";;", ">>>", "%%"});

std::size_t line_begin(std::string_view text, std::size_t at) {
  return text.substr(0, at).rfind('\n') + 1;
}

std::string_view without_indent(std::string_view text) {
  const auto first = std::ranges::find_if_not(text, ascii::is_space);
  return text.substr(static_cast<std::size_t>(first - text.begin()));
}

char last_visible(std::string_view text) {
  while (!text.empty() && ascii::is_space(text.back())) text.remove_suffix(1);
  return text.empty() ? '\0' : text.back();
}

// The place behind a comment that begins at `at`; `at` itself when none does.
std::size_t behind_comment(std::string_view text, std::size_t at) {
  const auto rest = text.substr(at);
  if (rest.starts_with("//")) return std::min(text.find('\n', at), text.size());
  if (!rest.starts_with("/*")) return at;
  const auto end = text.find("*/", at + 2);
  return end == std::string_view::npos ? text.size() : end + 2;
}

// Whether the parenthesis that follows `before` opens parameters. One that groups a type follows
// an operator of types.
bool opens_parameters(std::string_view before) {
  constexpr std::string_view type_operators = ":|&<=,(";
  return type_operators.find(last_visible(before)) == std::string_view::npos;
}

// A string that stands where a statement does documents what it stands in.
bool is_statement(std::string_view before) {
  if (!before.empty() && ascii::lower(before.back()) == 'r') before.remove_suffix(1);
  const auto line = before.substr(line_begin(before, before.size()));
  if (!without_indent(line).empty()) return false;
  const char last = last_visible(before);
  return last == '\0' || last == ':' || last == '"' || last == '\'';
}

}  // namespace

bool on_comment_line(std::string_view text, std::size_t at) {
  const auto line = without_indent(text.substr(line_begin(text, at), 200));
  return std::ranges::any_of(kCommentMarks,
                             [line](std::string_view mark) { return line.starts_with(mark); });
}

std::string_view block_at(std::string_view text, std::size_t open) {
  const auto body = text.substr(open + 1, kLongestBlock);
  std::size_t depth = 1;
  for (std::size_t i = 0; i < body.size(); ++i) {
    i = behind_comment(body, i);
    if (i >= body.size()) break;
    if (body[i] == '{') ++depth;
    if (body[i] == '}' && --depth == 0) return body.substr(0, i);
  }
  return body;
}

std::vector<TripleQuoted> triple_quoted(std::string_view text) {
  std::vector<TripleQuoted> found;
  for (std::size_t at = 0; (at = text.find_first_of("\"'#", at)) != std::string_view::npos;) {
    const auto rest = text.substr(at);
    const char quote = rest.front();
    if (quote == '#') {
      at = std::min(text.find('\n', at), text.size());
    } else if (rest.size() >= 3 && rest[1] == quote && rest[2] == quote) {
      const auto close = text.find(rest.substr(0, 3), at + 3);
      const auto end = close == std::string_view::npos ? text.size() : close + 3;
      found.push_back({{at, end}, is_statement(text.substr(0, at))});
      at = end;
    } else {
      const auto stop = text.find_first_of(quote == '"' ? "\"\n" : "'\n", at + 1);
      at = stop == std::string_view::npos ? text.size() : stop + 1;
    }
  }
  return found;
}

bool holds_only_fields(std::string_view block) {
  bool has_field = false;
  for (std::size_t i = 0; i < block.size(); ++i) {
    i = behind_comment(block, i);
    if (i >= block.size()) break;
    if (block[i] == '(' && opens_parameters(block.substr(0, i))) return false;
    if (block[i] == '=' && block.substr(i).starts_with("=>")) return false;
    has_field = has_field || block[i] == ':';
  }
  return has_field;
}

}  // namespace kestrix
