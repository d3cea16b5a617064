#include "kestrix/languages/csharp/directives.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "kestrix/text/ascii.h"

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
constexpr std::string_view kBeforeWhole = "\n;{}[](,";  // "\n": nothing at all
constexpr std::string_view kEndOfWhole = "\n;}],";

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

  void take_byte(char c) {
    if (c == '\n') line_starts_ = true;
    if (ascii::is_space(c)) return;
    line_starts_ = false;
    last_ = c;
    if (c == '(' || c == '[' || c == '{') ++depth_;
    if (c != ')' && c != ']' && c != '}') return;
    if (depth_ > 0) --depth_;
    if (!open_.empty()) open_.back().lowest = std::min(open_.back().lowest, depth_);
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
  bool line_starts_ = true;
  char last_ = '\n';
  std::size_t depth_ = 0;
  std::vector<Open> open_;
};

bool has_directive(std::string_view text) {
  for (std::size_t at = text.find('#'); at != text.npos; at = text.find('#', at + 1)) {
    const std::size_t before = at == 0 ? text.npos : text.find_last_not_of(" \t", at - 1);
    if (before == text.npos || text[before] == '\n') return true;
  }
  return false;
}

}  // namespace

const Lexis& lexis() { return kLexis; }

std::optional<std::string> mask(std::string_view text) {
  if (!has_directive(text)) return std::nullopt;
  return Masking(text).run();
}

}  // namespace kestrix::index::csharp
