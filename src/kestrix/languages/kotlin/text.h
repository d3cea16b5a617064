#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/syntax/lexis.h"

/// What can be told of Kotlin's text without its grammar.
namespace kestrix::index::kotlin {

const Lexis& lexis();

/// A copy of the text without what the grammar misreads at the start of declarations: annotations
/// on the lines before them (when a modifier that may also be a name follows, "data" or "actual",
/// it takes the whole for an expression), and the first word of "fun interface" (with a body on one
/// line it gives up the file). None of these is needed of the tree.
std::optional<std::string> mask(std::string_view text);

/// The annotations that the mask leaves out, with their arguments; in order.
std::vector<std::string_view> masked_annotations(std::string_view text);

/// Walks over the code outside of comments and strings, counting lines and braces.
class Code {
 public:
  explicit Code(std::string_view text) : text_(text) {}

  /// The next word that stands in no braces; "" at the end.
  std::string_view next_top_word();
  /// In how many braces the byte stands; offsets must ascend.
  std::size_t depth_at(std::size_t offset);
  /// The line of what was read last.
  std::uint32_t line() const { return line_; }

 private:
  std::string_view next_piece();

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;
  std::uint32_t line_ = 1;
};

struct TypeText {
  std::string_view name;
  std::string_view head;  ///< the rest of its line, up to its body
  std::uint32_t line = 0;
  bool interface = false;
};

/// The classes, interfaces and objects that stand in no braces, in order; for a file that the
/// grammar cannot read.
std::vector<TypeText> top_types(std::string_view text);

}  // namespace kestrix::index::kotlin
