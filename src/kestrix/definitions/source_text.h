#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace kestrix {

/// A stretch of a text: [begin, end).
struct Stretch {
  std::size_t begin;
  std::size_t end;
};

/// Tells which lines of a text begin as a comment of any language. Asked for ascending places, it
/// reads the text once.
class CommentLines {
 public:
  explicit CommentLines(std::string_view text) : text_(text) {}

  /// Whether the line that holds `at` is one.
  bool hold(std::size_t at);

 private:
  std::string_view text_;
  std::size_t line_ = 0;  // where the line begins
  std::size_t read_ = 0;
};

/// What stands between the brace at `open` and its partner, without either; to the end of the text
/// when it has none, and never more than a few thousand bytes.
std::string_view block_at(std::string_view text, std::size_t open);

/// The strings in triple quotes of a Python source, in order.
struct TripleQuoted : Stretch {
  bool documentation;  ///< the string is a statement, not a value
};
std::vector<TripleQuoted> triple_quoted(std::string_view text);

/// Tells which places of a script lie in a template literal. Asked for ascending places, it reads
/// the text once.
class TemplateLiterals {
 public:
  explicit TemplateLiterals(std::string_view text) : text_(text) {}

  bool hold(std::size_t at);

 private:
  std::string_view text_;
  std::size_t read_ = 0;
  bool inside_ = false;
};

/// Whether the members between an interface's braces are all fields: none is a method, a call or a
/// callback, and there is one at least.
bool holds_only_fields(std::string_view block);

}  // namespace kestrix
