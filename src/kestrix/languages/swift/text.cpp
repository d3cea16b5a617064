#include "kestrix/languages/swift/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "kestrix/text/ascii.h"

namespace kestrix::index::swift {
namespace {

constexpr std::array<std::string_view, 1> kComments = {"//"};
constexpr std::array kStrings = {
    StringStyle{.open = R"(#""")", .close = R"("""#)", .multiline = true, .escapes = false},
    StringStyle{.open = "#\"", .close = "\"#", .escapes = false},
    StringStyle{.open = R"(""")", .close = R"(""")", .multiline = true, .splice = "\\("},
    StringStyle{.open = "\"", .close = "\"", .splice = "\\("},
    StringStyle{.open = "`", .close = "`", .escapes = false},
};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "/*",
                          .block_close = "*/",
                          .nested_blocks = true,
                          .strings = kStrings};

constexpr auto kMarked = std::to_array<std::string_view>({"try", "await"});
constexpr auto kOwnership = std::to_array<std::string_view>(
    {"borrowing", "consume", "consuming", "nonmutating", "sending", "unsafe"});
// Behind these words, the one before is a name.
constexpr auto kOperators = std::to_array<std::string_view>({"as", "else", "in", "is", "where"});
constexpr auto kDirectives = std::to_array<std::string_view>({"else", "elseif", "endif", "if"});
constexpr std::string_view kUnsafely = "nonisolated(unsafe)";
constexpr std::size_t kLongestErrorType = 200;

bool is_among(std::span<const std::string_view> words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

class Mask {
 public:
  explicit Mask(std::string_view text) : text_(text) {}

  std::optional<std::string> run() {
    WordScanner scanner(text_, kLexis);
    for (Word word; scanner.next(word);) {
      if (!word.member && word.offset >= done_) visit(word);
    }
    blank_values();
    return std::move(masked_);
  }

 private:
  void visit(const Word& word) {
    const std::size_t end = word.offset + word.text.size();
    const bool directive = word.offset > 0 && text_[word.offset - 1] == '#';
    if (directive) {
      if (is_among(kDirectives, word.text)) {
        done_ = std::min(text_.find('\n', end), text_.size());
        blank(word.offset - 1, done_);
      } else if (word.text.starts_with('_')) {
        blank(word.offset - 1, word.offset);
      }
    } else if (is_among(kMarked, word.text)) {
      const bool mark = end < text_.size() && (text_[end] == '?' || text_[end] == '!');
      blank(word.offset, mark ? end + 1 : end);
    } else if (is_among(kOwnership, word.text)) {
      if (stands_before_name(end)) blank(word.offset, end);
    } else if (word.text == "throws" && text_.substr(end).starts_with('(')) {
      const std::size_t close = text_.substr(end, kLongestErrorType).find(')');
      if (close != std::string_view::npos) blank(end, end + close + 1);
    } else if (text_.substr(word.offset).starts_with(kUnsafely)) {
      blank(word.offset, word.offset + kUnsafely.size());
    }
  }

  bool stands_before_name(std::size_t at) const {
    if (at + 1 >= text_.size() || text_[at] != ' ') return false;
    std::size_t end = ++at;
    if (text_[at] == '@') return true;
    while (end < text_.size() && ascii::is_word(text_[end])) ++end;
    return end > at && !is_among(kOperators, text_.substr(at, end - at));
  }

  // "done(())"
  void blank_values() {
    for (std::size_t at = text_.find("(()"); at != text_.npos; at = text_.find("(()", at + 1)) {
      const char next = at + 3 < text_.size() ? text_[at + 3] : '\0';
      if (next == ')') blank(at + 1, at + 3);
      if (next == ',') blank(at + 1, at + 3, '0');
    }
  }

  void blank(std::size_t from, std::size_t to, char first = ' ') {
    if (!masked_) masked_.emplace(text_);
    for (std::size_t at = from; at < to; ++at) {
      if (text_[at] != '\n') (*masked_)[at] = at == from ? first : ' ';
    }
  }

  std::string_view text_;
  std::optional<std::string> masked_;
  std::size_t done_ = 0;  // the end of the last line that is blank
};

}  // namespace

const Lexis& lexis() { return kLexis; }

std::optional<std::string> mask(std::string_view text) { return Mask(text).run(); }

}  // namespace kestrix::index::swift
