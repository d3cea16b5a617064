#include "kestrix/definitions/source_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

constexpr std::size_t kLongestBlock = 16384;
constexpr auto kCommentMarks =
    std::to_array<std::string_view>({"//", "#", "*", "/*", "--", "<!--", ";;", ">>>", "%%"});

std::string_view without_indent(std::string_view text) {
  const auto first = std::ranges::find_if_not(text, ascii::is_space);
  return text.substr(static_cast<std::size_t>(first - text.begin()));
}

// The place behind a comment that begins at `at`; `at` itself when none does.
std::size_t behind_comment(std::string_view text, std::size_t at) {
  const auto rest = text.substr(at);
  if (rest.starts_with("//")) return std::min(text.find('\n', at), text.size());
  if (!rest.starts_with("/*")) return at;
  const auto end = text.find("*/", at + 2);
  return end == std::string_view::npos ? text.size() : end + 2;
}

// Whether the parenthesis that follows a character opens parameters. One that groups a type follows
// an operator of types.
bool opens_parameters(char last_visible) {
  constexpr std::string_view type_operators = ":|&<=,(";
  return type_operators.find(last_visible) == std::string_view::npos;
}

constexpr auto kMarks = [] {
  std::array<bool, 256> marks{};
  for (const char c : std::string_view("#\"'()[]{}")) marks[static_cast<unsigned char>(c)] = true;
  return marks;
}();

/// Finds the strings in triple quotes of a Python source without mistaking a comment's or a plain
/// string's quotes for theirs.
class PythonStrings {
 public:
  explicit PythonStrings(std::string_view text) : text_(text) {}

  std::vector<TripleQuoted> find() {
    while (at_ < text_.size()) step();
    return std::move(found_);
  }

 private:
  void step() {
    for (; at_ < text_.size() && !kMarks[static_cast<unsigned char>(text_[at_])]; ++at_) {
      if (text_[at_] == '\n') note_line(at_ + 1);
    }
    if (at_ == text_.size()) return;
    const char c = text_[at_];
    if (c == '#') {
      at_ = std::min(text_.find('\n', at_), text_.size());
    } else if (c == '"' || c == '\'') {
      read_string(c);
    } else {
      const bool opens = c == '(' || c == '[' || c == '{';
      if (opens || depth_ > 0) depth_ += opens ? 1 : -1;
      ++at_;
    }
  }

  void read_string(char quote) {
    const auto marks = text_.substr(at_, 3);
    if (marks.size() < 3 || marks[1] != quote || marks[2] != quote) return read_plain(quote);
    const auto close = text_.find(marks, at_ + 3);
    const auto end = close == std::string_view::npos ? text_.size() : close + 3;
    found_.push_back({{at_, end}, is_statement()});
    at_ = end;
  }

  void read_plain(char quote) {
    for (++at_; at_ < text_.size() && text_[at_] != quote && text_[at_] != '\n'; ++at_) {
      if (text_[at_] == '\\') ++at_;
    }
    if (at_ < text_.size() && text_[at_] == '\n') note_line(at_ + 1);
    ++at_;
  }

  // Of a line within a string or comment it does not matter where it begins.
  void note_line(std::size_t begin) {
    line_ = begin;
    first_ = begin;
  }

  // A string that begins a line outside all brackets is a statement of its own, unless a backslash
  // joins the line to the one before.
  bool is_statement() {
    while (first_ < at_ && ascii::is_space(text_[first_])) ++first_;
    const bool raw = first_ + 1 == at_ && ascii::lower(text_[first_]) == 'r';
    return depth_ == 0 && (first_ == at_ || raw) && !text_.substr(0, line_).ends_with("\\\n");
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 0;   // where the line begins
  std::size_t first_ = 0;  // behind the blanks that it begins with, as far as they were read
  int depth_ = 0;
  std::vector<TripleQuoted> found_;
};

}  // namespace

bool CommentLines::hold(std::size_t at) {
  const auto before = text_.substr(0, at);
  for (auto end = before.find('\n', read_); end != before.npos; end = before.find('\n', read_)) {
    line_ = end + 1;
    read_ = line_;
  }
  read_ = before.size();
  const auto line = without_indent(text_.substr(line_, 200));
  return std::ranges::any_of(kCommentMarks,
                             [line](std::string_view mark) { return line.starts_with(mark); });
}

std::string_view block_at(std::string_view text, std::size_t open) {
  const auto body = text.substr(open + 1, kLongestBlock);
  std::size_t depth = 1;
  for (std::size_t i = 0; i < body.size(); ++i) {
    if (body[i] == '/' && (i = behind_comment(body, i)) >= body.size()) break;
    if (body[i] == '{') ++depth;
    if (body[i] == '}' && --depth == 0) return body.substr(0, i);
  }
  return body;
}

std::vector<TripleQuoted> triple_quoted(std::string_view text) {
  return PythonStrings(text).find();
}

bool TemplateLiterals::hold(std::size_t at) {
  const auto before = text_.substr(0, at);
  while ((read_ = before.find('`', read_)) != before.npos) {
    if (read_ == 0 || text_[read_ - 1] != '\\') inside_ = !inside_;
    ++read_;
  }
  read_ = before.size();
  return inside_;
}

bool holds_only_fields(std::string_view block) {
  bool has_field = false;
  char last_visible = '\0';
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (block[i] == '/' && (i = behind_comment(block, i)) >= block.size()) break;
    if (block[i] == '(' && opens_parameters(last_visible)) return false;
    if (block[i] == '=' && block.substr(i).starts_with("=>")) return false;
    has_field = has_field || block[i] == ':';
    if (!ascii::is_space(block[i])) last_visible = block[i];
  }
  return has_field;
}

}  // namespace kestrix
