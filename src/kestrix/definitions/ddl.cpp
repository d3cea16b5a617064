#include "kestrix/definitions/ddl.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <string>

#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

constexpr std::size_t kLongestHead = 400;

constexpr auto kProseNames = std::to_array<std::string_view>(
    {"statement",  "statements", "command",    "commands", "syntax", "query",   "queries",
     "clause",     "clauses",    "sql",        "ddl",      "script", "scripts", "operation",
     "operations", "privilege",  "permission", "event",    "events", "and",     "or",
     "as",         "for",        "with",       "is",       "in",     "to",      "from",
     "like",       "the",        "a",          "an",       "when",   "if",      "on"});

// A part of a name that a program fills in: %s, %(table)s, {name}, ${name}, #{name}, :name, and the
// end of a literal that more is appended to.
constexpr const char* kPlaceholder =
    R"(%\(\w+\)[a-z]|%[-\d.]*[a-zA-Z@]|[$#]?\{[^{}\n]{0,80}\}|\{\{[^{}\n]{0,80}\}\}|\$\d|[?]|@\w+|)"
    R"(:\w+|["'`]\s*(?:\+|\.|\|\||<<|,)\s*[\w$])";

std::string name_pattern() {
  return std::string(R"((?:[\w.$"'`\[\]\\-]|)") + kPlaceholder + R"()+?)";
}

// Between a name and its parenthesis: space, line ends written as escapes, the seams of a literal
// that runs over several lines, comments.
constexpr const char* kGap = R"((?:\s|\\[nrt]|["'`+.\\]|--[^\n]*\n)*)";

RE2::Options options() {
  RE2::Options options;
  options.set_case_sensitive(false);
  options.set_encoding(RE2::Options::EncodingLatin1);
  return options;
}

const RE2& create_pattern() {
  static const RE2 pattern(
      R"(create\s+(?:[a-z]+\s+){0,3}?(?:table|type)\s+(?:if\s+not\s+exists\s+)?()" +
          name_pattern() + R"()(?:\s+(?:as\s+)?(?:enum|object|range|table|record|struct)|)" +
          R"(\s+as|\s+using\s+\w+|\s+on\s+cluster\s+\S+)?)" + kGap + R"(\()",
      options());
  return pattern;
}

// The name may also be cut off where a program appends the rest.
const RE2& placeholder_pattern() {
  static const RE2 pattern(
      std::string(R"(CREATE\s+(?:[A-Z]+\s+){0,3}?TABLE\s+(?:IF\s+NOT\s+EXISTS\s+)?)") +
      R"(["'`\[\\]*((?:\w+[."'`\]\\]+)*(?:)" + kPlaceholder + "))");
  return pattern;
}

const RE2& alter_pattern() {
  static const RE2 pattern(R"(alter\s+table\s+(?:if\s+exists\s+)?(?:only\s+)?()" + name_pattern() +
                               R"()\s+add\s+["'`\[{%]?\w)",
                           options());
  return pattern;
}

bool is_name(re2::StringPiece matched) {
  const std::string_view name(matched.data(), matched.size());
  return std::ranges::any_of(name,
                             [](char c) { return ascii::is_word(c) || c == '?' || c == '{'; }) &&
         std::ranges::none_of(kProseNames, [name](auto word) { return ascii::equals(name, word); });
}

// Prose says "create" within a sentence; a statement begins a line, a literal, or follows another.
bool begins_statement(std::string_view before) {
  while (!before.empty() && (before.back() == ' ' || before.back() == '\t')) {
    before.remove_suffix(1);
  }
  constexpr std::string_view starts = "\n\r\"'`(;[>=";
  if (before.empty() || starts.find(before.back()) != std::string_view::npos) return true;
  return before.ends_with("\\n");
}

}  // namespace

const char* const kDdlStart =
    R"((?i:\b(?:create\s+(?:[a-z]+\s+){0,3}?(?:table|type)|alter\s+table)\s))";

Ddl ddl_at(std::string_view text, std::size_t at) {
  const auto head = text.substr(at, kLongestHead);
  const re2::StringPiece input(head.data(), head.size());
  const bool starts = begins_statement(text.substr(0, at));
  if (!starts && !ascii::is_upper(head.front())) return Ddl::kNone;
  const auto matches = [&input](const RE2& pattern) {
    std::array<re2::StringPiece, 2> found;
    return pattern.Match(input, 0, input.size(), RE2::ANCHOR_START, found.data(), 2) &&
           is_name(found[1]);
  };
  if (matches(create_pattern()) || (starts && matches(placeholder_pattern()))) return Ddl::kCreates;
  if (matches(alter_pattern())) return Ddl::kAdds;
  return Ddl::kNone;
}

}  // namespace kestrix
