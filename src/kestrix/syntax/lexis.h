#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// How one kind of string literal is written.
struct StringStyle {
  std::string_view open;
  std::string_view close;
  bool multiline = false;  ///< otherwise an unclosed one ends with its line
  bool escapes = true;     ///< a backslash protects the byte after it
  bool doubles = false;    ///< the closing mark written twice stands for itself
  /// What opens code inside the string, up to the matching bracket ("${", "{", "\("); "" for
  /// nothing.
  std::string_view splice{};
  /// The splice counts only when the word that touches the opening quote holds one of these
  /// letters (the "f" of Python's f-strings); "" for always.
  std::string_view splice_prefix{};
};

/// The little that has to be known of a language to find its words without a parser.
struct Lexis {
  std::span<const std::string_view> line_comments{};
  std::string_view block_open{};
  std::string_view block_close{};
  bool nested_blocks = false;
  std::span<const StringStyle> strings{};  ///< of two openers that both fit, the first one counts
  bool regexes = false;        ///< "/" opens a regular expression where an operand may stand
  bool char_literals = false;  ///< 'x' and '\n' are literals, any other "'" is nothing
};

/// Length of the comment that the text starts with, up to its line's end or through its closing
/// mark; 0 when it starts with none.
std::size_t comment_length(std::string_view text, const Lexis& lexis);

/// Length of the string literal that the text starts with, spliced code included; 0 when it starts
/// with none.
std::size_t string_length(std::string_view text, const Lexis& lexis);

/// A word of the code: a run of letters, digits, "_", "$" and bytes above 0x7F that starts with
/// no digit. Views the scanned text.
struct Word {
  std::string_view text;
  std::size_t offset = 0;
  bool member = false;  ///< stands behind a ".", so it names a member of something else
};

/// Walks over the words of a text, leaving out comments and the literal parts of strings. One pass,
/// linear; what is unclosed or malformed only changes which words are seen. The text and the
/// lexis must outlive it.
class WordScanner {
 public:
  WordScanner(std::string_view text, const Lexis& lexis);

  /// Moves to the next word; false at the end of the text.
  bool next(Word& word);

 private:
  enum class Kind : std::uint8_t { kOther, kSpace, kWord, kDigit, kBrace, kOpener };
  struct Splice {
    const StringStyle* style;
    std::uint32_t braces;
  };

  Kind kind(std::size_t at) const { return kinds_[static_cast<unsigned char>(text_[at])]; }
  bool starts(std::string_view token) const { return text_.substr(at_).starts_with(token); }
  void read_word(Word& word);
  void skip_number();
  void skip_brace();
  void skip_opener();
  bool skip_comment();
  bool skip_string();
  void skip_string_rest(const StringStyle& style, bool splices);
  bool splices(const StringStyle& style) const;
  bool skip_char();
  bool skip_regex();
  bool operand_may_start() const;

  std::string_view text_;
  const Lexis& lexis_;
  std::array<Kind, 256> kinds_{};
  std::size_t at_ = 0;
  char before_ = '\n';            // the last byte of code that is no space
  std::string_view last_word_{};  // the last word, "" when something else came after it
  std::vector<Splice> open_;      // the strings whose spliced code is being read
};

}  // namespace kestrix::index
