#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// A pattern as git's ignore files write it: `*`, `?`, `[…]` and `\` as in a shell, where none but
/// `**` matches a slash, and `**` does only as a whole path component.
///
/// Matching follows all ways through the pattern at once: its time is at most the pattern's length
/// times the path's, whatever the pattern.
class Wildmatch {
 public:
  explicit Wildmatch(std::string_view pattern, bool ignore_case = false);

  bool is_valid() const { return valid_; }

  /// Of its parts, each of which is looked at for each byte of a path at most.
  std::size_t size() const { return tokens_.size(); }

  /// Whether the pattern matches the whole of `path`. A malformed pattern matches nothing.
  bool matches(std::string_view path) const;

 private:
  enum class Kind : std::uint8_t {
    kByte,         // itself
    kAny,          // one byte, no slash
    kSet,          // one byte of a set, no slash
    kRun,          // any run without a slash
    kPath,         // any run
    kDirectories,  // nothing, or any run that ends in a slash
  };
  struct Token {
    Kind kind = Kind::kByte;
    unsigned char byte = 0;
    std::size_t set = 0;
  };
  using ByteSet = std::bitset<256>;
  using States = std::vector<bool>;

  void parse(std::string_view pattern);
  void find_words();
  bool has_words(std::string_view path) const;
  std::size_t parse_stars(std::string_view pattern, std::size_t at);
  std::size_t parse_set(std::string_view pattern, std::size_t at);
  void push_byte(char byte);
  void enter(States& states, std::size_t token) const;
  void step(std::size_t token, unsigned char byte, States& next) const;
  bool accepts(const Token& token, unsigned char byte) const;

  std::vector<Token> tokens_;
  std::vector<ByteSet> sets_;
  std::vector<std::string> words_;  // bytes in a row that a path must have, in their order
  bool ends_with_word_ = false;     // whether the last of them ends the path
  bool ignore_case_;
  bool valid_ = true;
};

}  // namespace kestrix::index
