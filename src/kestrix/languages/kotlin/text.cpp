#include "kestrix/languages/kotlin/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "kestrix/languages/jvm/lexis.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index::kotlin {
namespace {

bool is_name_byte(char c) {
  return ascii::is_word(c) || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

class Mask {
 public:
  explicit Mask(std::string_view text) : text_(text), masked_(text) {}

  std::string run() {
    std::size_t done = 0;  // arguments may be annotations, too
    for (std::size_t at = text_.find('@'); at != text_.npos; at = text_.find('@', at + 1)) {
      if (!starts_line(at)) continue;
      const std::size_t end = annotation_end(at);
      blank(at, end);
      if (end > at && at >= done) annotations_.push_back(text_.substr(at, end - at));
      done = std::max(done, end);
    }
    blank_before("fun ", "interface");
    return std::move(masked_);
  }
  std::vector<std::string_view> annotations() { return std::move(annotations_); }

 private:
  // Only other annotations may stand before it on its line.
  bool starts_line(std::size_t at) const {
    while (at > 0 && (masked_[at - 1] == ' ' || masked_[at - 1] == '\t')) --at;
    return at == 0 || masked_[at - 1] == '\n';
  }

  std::size_t annotation_end(std::size_t at) {
    std::size_t end = at + 1;
    while (end < text_.size() && is_name_byte(text_[end])) ++end;
    if (end == at + 1 || end >= text_.size() || text_[end] == ':') return at;
    return text_[end] == '(' ? arguments_end(end) : end;
  }

  std::size_t arguments_end(std::size_t open) {
    if (open < unclosed_before_) return open;
    const std::size_t limit = std::min(text_.size(), open + kLongestArguments);
    std::size_t depth = 0;
    for (std::size_t at = open; at < limit; ++at) {
      const std::string_view rest = text_.substr(at, limit - at);
      if (const std::size_t length = string_length(rest, jvm::kLexis)) {
        at += length - 1;
      } else if (text_[at] == '(') {
        ++depth;
      } else if (text_[at] == ')' && --depth == 0) {
        return at + 1;
      }
    }
    unclosed_before_ = limit;
    return open;
  }

  void blank(std::size_t start, std::size_t end) {
    for (std::size_t at = start; at < end; ++at) {
      if (masked_[at] != '\n') masked_[at] = ' ';
    }
  }

  void blank_before(std::string_view word, std::string_view next) {
    for (std::size_t at = text_.find(word); at != text_.npos; at = text_.find(word, at + 1)) {
      const bool whole = at == 0 || !is_name_byte(text_[at - 1]);
      if (whole && text_.substr(at + word.size()).starts_with(next)) blank(at, at + word.size());
    }
  }

  static constexpr std::size_t kLongestArguments = 2000;

  std::string_view text_;
  std::string masked_;
  std::vector<std::string_view> annotations_;
  std::size_t unclosed_before_ = 0;
};

std::size_t skip_length(std::string_view rest) {
  if (const std::size_t comment = comment_length(rest, jvm::kLexis)) return comment;
  if (rest.size() > 2 && rest[0] == '\'' && rest[2] == '\'') return 3;
  return string_length(rest, jvm::kLexis);
}

std::size_t word_length(std::string_view rest) {
  return static_cast<std::size_t>(std::ranges::find_if_not(rest, is_name_byte) - rest.begin());
}

// Whether the keyword is followed by the word alone: "Type::class" and "object : Base()" name none.
bool is_name_of(std::string_view text, std::string_view keyword, std::string_view word) {
  const auto at = static_cast<std::size_t>(keyword.data() - text.data());
  const auto end = at + keyword.size();
  const auto start = static_cast<std::size_t>(word.data() - text.data());
  if (at > 0 && text[at - 1] == ':') return false;
  return text.substr(end, start - end).find_first_not_of(" \t\r\n") == text.npos;
}

// From the start of the line that the name stands on up to the body or the line's end.
std::string_view head_around(std::string_view text, std::string_view name) {
  const auto at = static_cast<std::size_t>(name.data() - text.data());
  const std::size_t start = text.rfind('\n', at) + 1;
  return text.substr(start, std::min(text.find_first_of("{\n", at), text.size()) - start);
}

}  // namespace

// A word, something to skip or one byte.
std::string_view Code::next_piece() {
  const std::string_view rest = text_.substr(at_);
  const std::size_t length = std::max({skip_length(rest), word_length(rest), std::size_t{1}});
  const std::string_view piece = rest.substr(0, length);
  at_ += piece.size();
  line_ += static_cast<std::uint32_t>(std::ranges::count(piece, '\n'));
  if (piece == "{") ++depth_;
  if (piece == "}" && depth_ > 0) --depth_;
  return piece;
}

std::string_view Code::next_top_word() {
  while (at_ < text_.size()) {
    const std::string_view piece = next_piece();
    if (depth_ == 0 && is_name_byte(piece.front())) return piece;
  }
  return {};
}

std::size_t Code::depth_at(std::size_t offset) {
  while (at_ < std::min(offset, text_.size())) next_piece();
  return depth_;
}

const Lexis& lexis() { return jvm::kLexis; }

std::optional<std::string> mask(std::string_view text) { return Mask(text).run(); }

std::vector<std::string_view> masked_annotations(std::string_view text) {
  Mask mask(text);
  mask.run();
  return mask.annotations();
}

std::vector<TypeText> top_types(std::string_view text) {
  std::vector<TypeText> types;
  Code code(text);
  std::string_view before;
  for (auto word = code.next_top_word(); !word.empty(); word = code.next_top_word()) {
    const bool type = before == "class" || before == "interface" || before == "object";
    if (type && is_name_of(text, before, word)) {
      types.push_back({word, head_around(text, word), code.line(), before == "interface"});
    }
    before = word;
  }
  return types;
}

}  // namespace kestrix::index::kotlin
