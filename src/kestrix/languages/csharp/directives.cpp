#include "kestrix/languages/csharp/directives.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace kestrix::index::csharp {
namespace {

constexpr std::array<std::string_view, 2> kComments = {"//", "#"};
// Where a "$" stands before the quote, braces hold code.
constexpr std::array kStrings = {
    StringStyle{.open = "@$\"",
                .close = "\"",
                .multiline = true,
                .escapes = false,
                .doubles = true,
                .splice = "{"},
    StringStyle{.open = "@\"",
                .close = "\"",
                .multiline = true,
                .escapes = false,
                .doubles = true,
                .splice = "{",
                .splice_prefix = "$"},
    StringStyle{.open = R"("""")",
                .close = R"("""")",
                .multiline = true,
                .escapes = false,
                .splice = "{",
                .splice_prefix = "$"},
    StringStyle{.open = R"(""")",
                .close = R"(""")",
                .multiline = true,
                .escapes = false,
                .splice = "{",
                .splice_prefix = "$"},
    StringStyle{.open = "\"", .close = "\"", .splice = "{", .splice_prefix = "$"},
};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "/*",
                          .block_close = "*/",
                          .strings = kStrings,
                          .char_literals = true};

constexpr std::size_t kLongestChar = 12;  // '\U0010FFFF'
constexpr std::size_t kDeepest = 64;      // conditionals in one another whose branches are dropped
constexpr std::size_t kLongestHead = 4096;
constexpr std::array<std::string_view, 3> kTypeWords = {"class ", "interface ", "struct "};
constexpr std::string_view kBeforeWhole = "\n;{}[](,";  // "\n": nothing at all
constexpr std::string_view kEndOfWhole = "\n;}],";

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool is_word_byte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Length of the keyword of a type that stands at `at` with a space behind it; 0 for none.
std::size_t type_keyword_length(std::string_view text, std::size_t at) {
  const char first = text[at];
  if ((first != 'c' && first != 'i' && first != 's') || (at > 0 && is_word_byte(text[at - 1]))) {
    return 0;
  }
  for (const std::string_view word : kTypeWords) {
    if (text.substr(at).starts_with(word)) return word.size() - 1;
  }
  return 0;
}

// Where the head of a type ends: at its "{" or ";", else where nothing of a head can follow.
std::size_t head_end(std::string_view text, std::size_t at) {
  const std::size_t last = std::min(text.size(), at + kLongestHead);
  std::size_t depth = 0;
  for (; at < last; ++at) {
    const char c = text[at];
    if (c == '(') ++depth;
    if (c == ')' && depth-- == 0) return at;
    if (depth == 0 && (c == '{' || c == ';' || c == '}' || c == '=' || c == '"')) return at;
  }
  return last;
}

// Whether "[" at `at` may start a list of values: it stands where a value does. So do attributes of
// parameters.
bool may_start_list(std::string_view text, std::size_t at) {
  const std::size_t before = at == 0 ? text.npos : text.find_last_not_of(" \t\r\n", at - 1);
  if (before == text.npos) return false;
  switch (text[before]) {
    case '=':
    case '(':
    case ',':
    case ':':
    case '[':
      return true;
    case '?':  // not "a?[0]"
      return before + 1 < at;
    case '>':
      return before > 0 && text[before - 1] == '=';
    default:
      return text.substr(0, before + 1).ends_with("return");
  }
}

// Whether what stands from `at` on may follow a list of values. Neither what an attribute belongs
// to nor "=" behind an index or a pattern does.
bool may_follow_list(std::string_view text, std::size_t at) {
  at = std::min(text.find_first_not_of(" \t\r\n", at), text.size());
  return at < text.size() && !is_word_byte(text[at]) &&
         std::string_view("[(=@").find(text[at]) == std::string_view::npos;
}

bool may_hold_list(std::string_view text) {
  for (std::size_t at = text.find('['); at != text.npos; at = text.find('[', at + 1)) {
    if (may_start_list(text, at)) return true;
  }
  return false;
}

class Masking {
 public:
  explicit Masking(std::string_view text) : text_(text), masked_(text) {}

  std::string run() {
    while (at_ < text_.size()) {
      if (text_[at_] == '#' && line_starts_) {
        take_directive();
      } else if (const std::size_t skipped = literal_length(); skipped > 0) {
        at_ += skipped;
      } else {
        if (const std::size_t keyword = type_keyword_length(text_, at_); keyword > 0) {
          give_body(at_ + keyword);
        }
        take_byte(text_[at_++]);
      }
    }
    return std::move(masked_);
  }

 private:
  // A conditional whose #endif is still to come.
  struct Open {
    bool may_be_whole;       // judged by what stands before it, then by its branches so far
    bool first = true;       // whether its first branch is being read
    std::size_t branch = 0;  // where the branch starts
    std::size_t depth = 0;   // of brackets, there
    std::size_t lowest = 0;  // in the branch
    std::size_t depth_after_first = 0;
    char before = '\n';  // the last byte of code before the branch
  };

  struct List {
    std::size_t start;
    std::size_t depth;  // of brackets around it
    bool possible;
  };

  std::size_t literal_length() {
    const std::string_view rest = text_.substr(at_);
    const std::size_t comment = text_[at_] == '/' ? comment_length(rest, kLexis) : 0;
    if (comment > 0) return comment;
    const bool quote = text_[at_] == '"' || text_[at_] == '@';
    const std::size_t length = quote ? string_length(rest, kLexis) : char_length(rest);
    if (length > 0) last_ = '"';
    return length;
  }

  static std::size_t char_length(std::string_view text) {
    if (!text.starts_with('\'')) return 0;
    text = text.substr(0, kLongestChar);
    const std::size_t close = text.find('\'', text.substr(1).starts_with('\\') ? 3 : 2);
    return close == text.npos ? 0 : close + 1;
  }

  // `at` is behind the keyword of a type. The line's end makes room for the body and moves to where
  // the space behind the keyword stands.
  void give_body(std::size_t at) {
    const bool constraint = last_ == ':' || last_ == ',';
    if (constraint || at < head_end_) return;
    const std::size_t end = head_end_ = head_end(text_, at);
    if (end >= text_.size() || text_[end] != ';') return;
    const char next = end + 1 < text_.size() ? text_[end + 1] : ' ';
    if (!is_space(next)) return;
    masked_[end] = '{';
    if (end + 1 == text_.size()) return;  // the parser adds what is missing
    masked_[end + 1] = '}';
    if (next == '\n') masked_[at] = '\n';
  }

  void take_byte(char c) {
    if (c == '\n') line_starts_ = true;
    if (is_space(c)) return;
    line_starts_ = false;
    if (c == '[') lists_.push_back({at_ - 1, depth_, may_start_list(text_, at_ - 1)});
    last_ = c;
    if (c == '(' || c == '[' || c == '{') ++depth_;
    if (c != ')' && c != ']' && c != '}') return;
    if (depth_ > 0) --depth_;
    if (!open_.empty()) open_.back().lowest = std::min(open_.back().lowest, depth_);
    if (c == ']') end_list();
  }

  // What reads "[a, b]" gets "{a, b}".
  void end_list() {
    while (!lists_.empty() && lists_.back().depth > depth_) lists_.pop_back();
    if (lists_.empty()) return;
    const List list = lists_.back();
    lists_.pop_back();
    if (list.depth < depth_ || !list.possible || !may_follow_list(text_, at_)) return;
    masked_[list.start] = '{';
    masked_[at_ - 1] = '}';
  }

  void take_directive() {
    const std::size_t end = std::min(text_.find('\n', at_), text_.size());
    std::string_view word = text_.substr(at_ + 1, end - at_ - 1);
    word.remove_prefix(std::min(word.find_first_not_of(" \t"), word.size()));
    if (word.starts_with("if")) {
      open_.push_back({.may_be_whole = kBeforeWhole.find(last_) != kBeforeWhole.npos});
      start_branch(end);
    } else if (word.starts_with("el") && !open_.empty()) {
      end_branch();
      open_.back().first = false;
      start_branch(end);
    } else if (word.starts_with("endif") && !open_.empty()) {
      end_branch();
      close();
    }
    blank(at_, end);
    at_ = end;
  }

  void start_branch(std::size_t at) {
    Open& open = open_.back();
    open.branch = at;
    open.before = last_;
    open.depth = open.lowest = depth_;
  }

  void end_branch() {
    Open& open = open_.back();
    const bool whole = depth_ == open.depth && open.lowest >= open.depth &&
                       kEndOfWhole.find(last_) != kEndOfWhole.npos;
    open.may_be_whole = open.may_be_whole && (whole || last_ == open.before);
    if (open.first) {
      open.depth_after_first = depth_;
    } else if (!open.may_be_whole && open_.size() <= kDeepest) {
      blank(open.branch, at_);
      depth_ = open.depth_after_first;
    }
  }

  void close() {
    const std::size_t lowest = open_.back().lowest;
    open_.pop_back();
    if (!open_.empty()) open_.back().lowest = std::min(open_.back().lowest, lowest);
  }

  void blank(std::size_t start, std::size_t end) {
    std::replace_if(
        masked_.begin() + static_cast<std::ptrdiff_t>(start),
        masked_.begin() + static_cast<std::ptrdiff_t>(end), [](char c) { return c != '\n'; }, ' ');
  }

  std::string_view text_;
  std::string masked_;
  std::size_t at_ = 0;
  std::size_t head_end_ = 0;  // of the last type
  bool line_starts_ = true;
  char last_ = '\n';
  std::size_t depth_ = 0;
  std::vector<Open> open_;
  std::vector<List> lists_;  // the "[" that are open
};

bool has_directive(std::string_view text) {
  for (std::size_t at = text.find('#'); at != text.npos; at = text.find('#', at + 1)) {
    const std::size_t before = at == 0 ? text.npos : text.find_last_not_of(" \t", at - 1);
    if (before == text.npos || text[before] == '\n') return true;
  }
  return false;
}

// Whether a type may end in ";"; words of comments and text look the same.
bool may_lack_body(std::string_view text) {
  for (const std::string_view word : kTypeWords) {
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at)) {
      at = head_end(text, at);
      if (at < text.size() && text[at] == ';') return true;
    }
  }
  return false;
}

}  // namespace

const Lexis& lexis() { return kLexis; }

std::optional<std::string> mask(std::string_view text) {
  if (!has_directive(text) && !may_lack_body(text) && !may_hold_list(text)) return std::nullopt;
  std::string masked = Masking(text).run();
  return masked == text ? std::nullopt : std::optional(std::move(masked));
}

}  // namespace kestrix::index::csharp
