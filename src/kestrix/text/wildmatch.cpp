#include "kestrix/text/wildmatch.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>

namespace kestrix::index {
namespace {

unsigned char lower(unsigned char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte - 'A' + 'a') : byte;
}

using Predicate = int (*)(int);

std::optional<Predicate> character_class(std::string_view name) {
  if (name == "alnum") return [](int c) { return std::isalnum(c); };
  if (name == "alpha") return [](int c) { return std::isalpha(c); };
  if (name == "blank") return [](int c) { return int{c == ' ' || c == '\t'}; };
  if (name == "cntrl") return [](int c) { return std::iscntrl(c); };
  if (name == "digit") return [](int c) { return std::isdigit(c); };
  if (name == "graph") return [](int c) { return std::isgraph(c); };
  if (name == "lower") return [](int c) { return std::islower(c); };
  if (name == "print") return [](int c) { return std::isprint(c); };
  if (name == "punct") return [](int c) { return std::ispunct(c); };
  if (name == "space") return [](int c) { return std::isspace(c); };
  if (name == "upper") return [](int c) { return std::isupper(c); };
  if (name == "xdigit") return [](int c) { return std::isxdigit(c); };
  return std::nullopt;
}

// Reads the inside of "[…]" from behind the bracket.
class SetReader {
 public:
  SetReader(std::string_view pattern, std::size_t at) : pattern_(pattern), at_(at) {}

  // The place behind the closing bracket; none when the set is malformed.
  std::optional<std::size_t> read(std::bitset<256>& set) {
    const bool negated = at_ < pattern_.size() && (pattern_[at_] == '!' || pattern_[at_] == '^');
    if (negated) ++at_;
    bool first = true;
    while (at_ < pattern_.size() && (pattern_[at_] != ']' || first)) {
      first = false;
      if (!read_item(set)) return std::nullopt;
    }
    if (at_ >= pattern_.size()) return std::nullopt;
    if (negated) set.flip();
    return at_ + 1;
  }

 private:
  bool read_item(std::bitset<256>& set) {
    if (pattern_.substr(at_, 2) == "[:") return read_class(set);
    const auto low = read_byte();
    if (!low) return false;
    auto high = low;
    if (at_ + 1 < pattern_.size() && pattern_[at_] == '-' && pattern_[at_ + 1] != ']') {
      ++at_;
      high = read_byte();
      if (!high) return false;
    }
    for (unsigned byte = *low; byte <= *high; ++byte) set.set(byte);
    return true;
  }

  std::optional<unsigned char> read_byte() {
    if (pattern_[at_] == '\\') ++at_;
    if (at_ >= pattern_.size()) return std::nullopt;
    return static_cast<unsigned char>(pattern_[at_++]);
  }

  bool read_class(std::bitset<256>& set) {
    const auto end = pattern_.find(']', at_ + 2);
    if (end == std::string_view::npos) return false;
    if (pattern_[end - 1] != ':' || end < at_ + 3) {  // not a class: the bracket stands for itself
      set.set('[');
      ++at_;
      return true;
    }
    const auto predicate = character_class(pattern_.substr(at_ + 2, end - at_ - 3));
    if (!predicate) return false;
    for (int byte = 0; byte < 128; ++byte) {
      if ((*predicate)(byte) != 0) set.set(static_cast<std::size_t>(byte));
    }
    at_ = end + 1;
    return true;
  }

  std::string_view pattern_;
  std::size_t at_;
};

}  // namespace

Wildmatch::Wildmatch(std::string_view pattern, bool ignore_case) : ignore_case_(ignore_case) {
  parse(pattern);
  if (!ignore_case_) find_words();
}

void Wildmatch::find_words() {
  bool open = false;
  for (const Token& token : tokens_) {
    const bool byte = token.kind == Kind::kByte;
    if (byte && !open) words_.emplace_back();
    if (byte) words_.back() += static_cast<char>(token.byte);
    open = byte;
  }
  ends_with_word_ = open;
}

// Most paths lack a word, and that is seen at once.
bool Wildmatch::has_words(std::string_view path) const {
  if (ends_with_word_ && !path.ends_with(words_.back())) return false;
  std::size_t at = 0;
  for (const std::string& word : words_) {
    const std::size_t found = path.find(word, at);
    if (found == std::string_view::npos) return false;
    at = found + word.size();
  }
  return true;
}

bool Wildmatch::matches(std::string_view path) const {
  if (!valid_ || !has_words(path)) return false;
  States states(tokens_.size() + 1);
  States next(tokens_.size() + 1);
  enter(states, 0);
  for (const char c : path) {
    std::fill(next.begin(), next.end(), false);
    for (std::size_t token = 0; token < tokens_.size(); ++token) {
      if (states[token]) step(token, static_cast<unsigned char>(c), next);
    }
    states.swap(next);
  }
  return states[tokens_.size()];
}

void Wildmatch::parse(std::string_view pattern) {
  for (std::size_t at = 0; at < pattern.size() && valid_;) {
    switch (pattern[at]) {
      case '*':
        at = parse_stars(pattern, at);
        break;
      case '?':
        tokens_.push_back({Kind::kAny});
        ++at;
        break;
      case '[':
        at = parse_set(pattern, at + 1);
        break;
      case '\\':
        valid_ = at + 1 < pattern.size();
        if (valid_) push_byte(pattern[at + 1]);
        at += 2;
        break;
      default:
        push_byte(pattern[at++]);
    }
  }
}

std::size_t Wildmatch::parse_stars(std::string_view pattern, std::size_t at) {
  const auto end = std::min(pattern.find_first_not_of('*', at), pattern.size());
  const bool component =
      (at == 0 || pattern[at - 1] == '/') && (end == pattern.size() || pattern[end] == '/');
  if (end - at < 2 || !component) {
    tokens_.push_back({Kind::kRun});
    return end;
  }
  if (end == pattern.size()) {
    tokens_.push_back({Kind::kPath});
    return end;
  }
  tokens_.push_back({Kind::kDirectories});
  return end + 1;
}

std::size_t Wildmatch::parse_set(std::string_view pattern, std::size_t at) {
  ByteSet set;
  const auto end = SetReader(pattern, at).read(set);
  valid_ = end.has_value();
  tokens_.push_back({Kind::kSet, 0, sets_.size()});
  sets_.push_back(set);
  return end.value_or(pattern.size());
}

void Wildmatch::push_byte(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  tokens_.push_back({Kind::kByte, ignore_case_ ? lower(value) : value});
}

void Wildmatch::enter(States& states, std::size_t token) const {
  for (; !states[token]; ++token) {
    states[token] = true;
    if (token == tokens_.size()) return;
    const Kind kind = tokens_[token].kind;
    if (kind != Kind::kRun && kind != Kind::kPath && kind != Kind::kDirectories) return;
  }
}

void Wildmatch::step(std::size_t token, unsigned char byte, States& next) const {
  switch (tokens_[token].kind) {
    case Kind::kRun:
      if (byte != '/') enter(next, token);
      return;
    case Kind::kPath:
      enter(next, token);
      return;
    case Kind::kDirectories:
      if (byte == '/') enter(next, token + 1);
      next[token] = true;
      return;
    default:
      if (accepts(tokens_[token], byte)) enter(next, token + 1);
  }
}

bool Wildmatch::accepts(const Token& token, unsigned char byte) const {
  if (token.kind == Kind::kByte) return token.byte == (ignore_case_ ? lower(byte) : byte);
  if (byte == '/') return false;
  if (token.kind == Kind::kAny) return true;
  const ByteSet& set = sets_[token.set];
  return set[byte] || (ignore_case_ &&
                       (set[lower(byte)] || set[static_cast<unsigned char>(std::toupper(byte))]));
}

}  // namespace kestrix::index
