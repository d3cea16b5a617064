#include "kestrix/syntax/lexis.h"

#include <algorithm>

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 11> kOperandWords = {
    "and", "await", "case", "delete", "do", "else", "in", "of", "return", "typeof", "yield"};
constexpr std::size_t kLongestChar = 12;  // '\u{10FFFF}'

std::size_t block_length(std::string_view text, const Lexis& lexis) {
  std::size_t at = 0;
  std::size_t depth = 0;
  while (at < text.size()) {
    const std::string_view rest = text.substr(at);
    if (depth > 0 && rest.starts_with(lexis.block_close)) {
      at += lexis.block_close.size();
      if (--depth == 0) return at;
    } else if ((depth == 0 || lexis.nested_blocks) && rest.starts_with(lexis.block_open)) {
      at += lexis.block_open.size();
      ++depth;
    } else {
      ++at;
    }
  }
  return at;
}

const StringStyle* style_at(std::string_view text, const Lexis& lexis) {
  const auto found = std::ranges::find_if(
      lexis.strings, [text](const StringStyle& style) { return text.starts_with(style.open); });
  return found == lexis.strings.end() ? nullptr : &*found;
}

// Length of what stands for itself in the string, though it starts with a backslash or the closing
// mark; 0 for anything else.
std::size_t protected_length(std::string_view text, const StringStyle& style) {
  if (style.escapes && text.front() == '\\') return std::min<std::size_t>(2, text.size());
  const std::string_view close = style.close;
  const bool doubled =
      style.doubles && text.starts_with(close) && text.substr(close.size()).starts_with(close);
  return doubled ? 2 * close.size() : 0;
}

}  // namespace

std::size_t comment_length(std::string_view text, const Lexis& lexis) {
  if (!lexis.block_open.empty() && text.starts_with(lexis.block_open)) {
    return block_length(text, lexis);
  }
  const bool opens = std::ranges::any_of(
      lexis.line_comments, [text](std::string_view token) { return text.starts_with(token); });
  return opens ? std::min(text.find('\n'), text.size()) : 0;
}

std::size_t string_length(std::string_view text, const Lexis& lexis) {
  const StringStyle* style = style_at(text, lexis);
  if (style == nullptr) return 0;
  std::size_t at = style->open.size();
  while (at < text.size()) {
    if (const std::size_t length = protected_length(text.substr(at), *style); length > 0) {
      at += length;
    } else if (text.substr(at).starts_with(style->close)) {
      return at + style->close.size();
    } else if (text[at] == '\n' && !style->multiline) {
      return at;
    } else {
      ++at;
    }
  }
  return at;
}

WordScanner::WordScanner(std::string_view text, const Lexis& lexis) : text_(text), lexis_(lexis) {
  for (std::size_t c = 0; c < kinds_.size(); ++c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (letter || c == '_' || c == '$' || c >= 0x80) kinds_[c] = Kind::kWord;
    if (c >= '0' && c <= '9') kinds_[c] = Kind::kDigit;
  }
  for (const char c : {' ', '\t', '\r', '\n'}) kinds_[static_cast<unsigned char>(c)] = Kind::kSpace;
  for (const char c : {'{', '}'}) kinds_[static_cast<unsigned char>(c)] = Kind::kBrace;
  const auto opener = [this](std::string_view token) {
    if (!token.empty()) kinds_[static_cast<unsigned char>(token.front())] = Kind::kOpener;
  };
  for (const auto comment : lexis.line_comments) opener(comment);
  opener(lexis.block_open);
  for (const auto& style : lexis.strings) {
    opener(style.open);
    if (!style.splice.ends_with('(')) continue;
    for (const char c : {'(', ')'}) kinds_[static_cast<unsigned char>(c)] = Kind::kBrace;
  }
  if (lexis.regexes) opener("/");
  if (lexis.char_literals) opener("'");
}

bool WordScanner::next(Word& word) {
  while (at_ < text_.size()) {
    switch (kind(at_)) {
      case Kind::kWord:
        read_word(word);
        return true;
      case Kind::kDigit:
        skip_number();
        break;
      case Kind::kBrace:
        skip_brace();
        break;
      case Kind::kOpener:
        skip_opener();
        break;
      case Kind::kOther:
        before_ = text_[at_];
        last_word_ = {};
        [[fallthrough]];
      case Kind::kSpace:
        ++at_;
    }
  }
  return false;
}

void WordScanner::read_word(Word& word) {
  const std::size_t start = at_;
  while (at_ < text_.size() && (kind(at_) == Kind::kWord || kind(at_) == Kind::kDigit)) ++at_;
  word.text = text_.substr(start, at_ - start);
  word.offset = start;
  word.member = start > 0 && text_[start - 1] == '.' && (start < 2 || text_[start - 2] != '.');
  before_ = text_[at_ - 1];
  last_word_ = word.text;
}

void WordScanner::skip_number() {
  while (at_ < text_.size() && (kind(at_) == Kind::kWord || kind(at_) == Kind::kDigit)) ++at_;
  before_ = '0';
  last_word_ = {};
}

void WordScanner::skip_brace() {
  const char brace = text_[at_++];
  before_ = brace;
  last_word_ = {};
  if (open_.empty()) return;
  const char opening = open_.back().style->splice.back();
  if (brace == opening) {
    ++open_.back().braces;
  } else if (brace != (opening == '(' ? ')' : '}')) {
    return;
  } else if (open_.back().braces > 0) {
    --open_.back().braces;
  } else {
    const StringStyle& style = *open_.back().style;
    open_.pop_back();
    skip_string_rest(style, true);
  }
}

void WordScanner::skip_opener() {
  if (skip_comment() || skip_string()) return;
  if (lexis_.char_literals && skip_char()) return;
  if (lexis_.regexes && skip_regex()) return;
  before_ = text_[at_++];
  last_word_ = {};
}

bool WordScanner::skip_comment() {
  const std::size_t length = comment_length(text_.substr(at_), lexis_);
  at_ += length;
  return length > 0;
}

bool WordScanner::skip_string() {
  const StringStyle* style = style_at(text_.substr(at_), lexis_);
  if (style == nullptr) return false;
  const bool spliced = splices(*style);
  at_ += style->open.size();
  skip_string_rest(*style, spliced);
  return true;
}

bool WordScanner::splices(const StringStyle& style) const {
  if (style.splice.empty()) return false;
  if (style.splice_prefix.empty()) return true;
  const bool touches = !last_word_.empty() && last_word_.data() + last_word_.size() == &text_[at_];
  return touches && last_word_.size() <= 2 &&
         last_word_.find_first_of(style.splice_prefix) != std::string_view::npos;
}

void WordScanner::skip_string_rest(const StringStyle& style, bool splices) {
  before_ = '"';
  last_word_ = {};
  const bool escaped = style.splice.starts_with('\\');
  while (at_ < text_.size()) {
    const bool opens = splices && starts(style.splice);
    const std::size_t length = opens && escaped ? 0 : protected_length(text_.substr(at_), style);
    if (length > 0) {
      at_ += length;
    } else if (starts(style.close)) {
      at_ += style.close.size();
      return;
    } else if (text_[at_] == '\n' && !style.multiline) {
      return;
    } else if (opens) {
      at_ += style.splice.size();
      open_.push_back({&style, 0});
      before_ = '{';
      return;
    } else {
      ++at_;
    }
  }
}

// A quote that closes after one character, or after an escape, is a literal; any other one is a
// lifetime or a label.
bool WordScanner::skip_char() {
  const std::string_view rest = text_.substr(at_ + 1, kLongestChar);
  if (text_[at_] != '\'' || rest.empty()) return false;
  const std::size_t close = rest.find('\'', rest[0] == '\\' ? 2 : 1);
  if (close == std::string_view::npos) return false;
  const bool one = close == 1 || rest[0] == '\\' || static_cast<unsigned char>(rest[0]) >= 0x80;
  if (!one) return false;
  at_ += close + 2;
  before_ = '"';
  last_word_ = {};
  return true;
}

bool WordScanner::operand_may_start() const {
  if (!last_word_.empty())
    return std::ranges::find(kOperandWords, last_word_) != kOperandWords.end();
  return std::string_view("(,=:[!&|?{};+-*%<>~^\n").find(before_) != std::string_view::npos;
}

bool WordScanner::skip_regex() {
  const bool closes_tag = at_ > 0 && text_[at_ - 1] == '<';
  if (text_[at_] != '/' || closes_tag || !operand_may_start()) return false;
  bool in_class = false;
  for (std::size_t i = at_ + 1; i < text_.size() && text_[i] != '\n'; ++i) {
    if (text_[i] == '\\') {
      ++i;
    } else if (text_[i] == '[') {
      in_class = true;
    } else if (text_[i] == ']') {
      in_class = false;
    } else if (text_[i] == '/' && !in_class) {
      at_ = i + 1;
      before_ = '"';
      last_word_ = {};
      return true;
    }
  }
  return false;
}

}  // namespace kestrix::index
