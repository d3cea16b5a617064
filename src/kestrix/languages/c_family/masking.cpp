#include "kestrix/languages/c_family/masking.h"

#include <algorithm>
#include <array>
#include <vector>

#include "kestrix/languages/c_family/conditionals.h"
#include "kestrix/languages/c_family/scanning.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kLongestHead = 400;  // of what is looked at of a line
constexpr std::array<std::string_view, 4> kTypeWords = {"class", "struct", "union", "enum"};
constexpr std::array<std::string_view, 7> kDeclarationWords = {
    "class", "enum", "extern", "namespace", "struct", "template", "typedef"};
// Words before a declaration's type, and between its parameters and its body.
constexpr std::array<std::string_view, 17> kSpecifiers = {
    "class", "const",  "constexpr", "enum",   "explicit", "extern",   "friend",  "inline",  "long",
    "short", "signed", "static",    "struct", "union",    "unsigned", "virtual", "volatile"};
constexpr std::array<std::string_view, 4> kTrailing = {"const", "final", "noexcept", "override"};
// What starts no declaration.
constexpr std::array<std::string_view, 15> kStatements = {
    "case", "co_return", "delete", "do",     "else",  "for",   "goto", "if",
    "new",  "return",    "sizeof", "switch", "throw", "using", "while"};

template <class List>
bool contains(const List& list, std::string_view word) {
  return std::ranges::find(list, word) != list.end();
}

bool is_macro(std::string_view word) { return word.size() > 2 && is_upper_case(word); }

// A part of the head of a declaration.
struct Piece {
  enum class Kind : std::uint8_t { kWord, kBrackets, kJoint, kEnd };
  Kind kind;
  std::size_t start;
  std::size_t end;
};

class Masking {
 public:
  explicit Masking(std::string_view text) : text_(text) {}

  std::optional<std::string> run() {
    for (const auto& [start, end] : broken_conditionals(text_)) blank(start, end);
    for (std::size_t line = 0; line < text_.size(); line = next_line(line)) {
      std::size_t at = skip_blanks(text_, line);
      if (at >= text_.size() || !(ascii::is_alpha(text_[at]) || text_[at] == '_')) continue;
      if (is_macro(word_at(text_, at))) {
        at = mask_before_declaration(at);
      } else if (word_at(text_, at) == "template") {
        at = skip_parameters(at + word_at(text_, at).size());
      } else if (word_at(text_, at) == "typedef" || word_at(text_, at) == "friend") {
        at = skip_space(text_, at + word_at(text_, at).size());
      }
      if (contains(kTypeWords, word_at(text_, at))) {
        const std::string_view word = word_at(text_, at);
        mask_in_head(at + word.size(), word == "class");
      }
      mask_specifiers(at);
    }
    return std::move(masked_);
  }

 private:
  std::size_t next_line(std::size_t at) const {
    return std::min(text_.find('\n', at), text_.size() - 1) + 1;
  }
  std::size_t skip_parameters(std::size_t at) const {
    return skip_space(text_, skip_bracketed(text_, skip_space(text_, at), '<', '>'));
  }
  std::size_t macro_end(std::size_t at) const {
    return skip_bracketed(text_, at + word_at(text_, at).size(), '(', ')');
  }

  void blank(std::size_t start, std::size_t end) {
    if (!masked_) masked_.emplace(text_);
    for (std::size_t i = start; i < end; ++i) {
      if (text_[i] != '\n') (*masked_)[i] = ' ';
    }
  }

  // "MACRO namespace a {"
  std::size_t mask_before_declaration(std::size_t at) {
    const std::size_t end = macro_end(at);
    const std::size_t next = skip_space(text_, end);
    if (next == end || !contains(kDeclarationWords, word_at(text_, next))) return at;
    blank(at, end);
    return next;
  }

  // "class MACRO(x) MACRO Name {"; `at` is behind "class". Only classes are also announced so: what
  // "struct NAME name;" says may be a value.
  void mask_in_head(std::size_t at, bool announced) {
    at = skip_space(text_, at);
    while (is_macro(word_at(text_, at))) {
      const std::size_t end = macro_end(at);
      const std::size_t next = skip_space(text_, end);
      if (next == end || !(is_macro(word_at(text_, next)) || opens_body(next, announced))) {
        return;
      }
      blank(at, end);
      at = next;
    }
  }

  // Whether a class's name stands at `at`, and behind it its bases or its body, or nothing.
  bool opens_body(std::size_t at, bool announced) const {
    const std::string_view name = word_at(text_, at);
    if (name.empty() || name == "final") return false;
    if (announced && text_.substr(at + name.size()).starts_with(';')) return true;
    at = skip_parameters(at + name.size());
    if (word_at(text_, at) == "final") at = skip_space(text_, at + 5);
    if (at >= text_.size()) return false;
    return text_[at] == '{' || (text_[at] == ':' && !text_.substr(at).starts_with("::"));
  }

  // The line from `at` on up to what ends a declaration's head.
  void read_pieces(std::size_t at) {
    pieces_.clear();
    const std::size_t limit = std::min(text_.size(), at + kLongestHead);
    while (at < limit) {
      at = skip_blanks(text_, at);
      if (at >= limit) break;
      const char c = text_[at];
      std::size_t end = at + 1;
      auto kind = Piece::Kind::kJoint;
      if (ascii::is_word(c)) {
        kind = Piece::Kind::kWord;
        end = at + word_at(text_, at).size();
      } else if (c == '(') {
        kind = Piece::Kind::kBrackets;
        end = skip_bracketed(text_, at, '(', ')');
      } else if (c == '<') {
        end = skip_bracketed(text_, at, '<', '>');
      } else if (c != '*' && c != '&' && c != ':' && c != '~') {
        kind = Piece::Kind::kEnd;
      }
      if (end == at) end = limit;  // brackets that close on a later line
      pieces_.push_back({kind, at, end});
      if (kind == Piece::Kind::kEnd) return;
      at = end;
    }
  }

  std::string_view text_of(const Piece& piece) const {
    return text_.substr(piece.start, piece.end - piece.start);
  }
  bool is_word(std::size_t at) const {
    return at < pieces_.size() && pieces_[at].kind == Piece::Kind::kWord;
  }
  bool has_brackets(std::size_t at) const {
    return at < pieces_.size() && pieces_[at].kind == Piece::Kind::kBrackets;
  }
  // ";", "{", "=" or the like, or words that stand behind parameters.
  bool ends_head(std::size_t at) const {
    if (at >= pieces_.size()) return false;
    if (pieces_[at].kind == Piece::Kind::kEnd) {
      const char c = text_[pieces_[at].start];
      return c == ';' || c == '{' || c == '=';
    }
    const std::string_view word = text_of(pieces_[at]);
    return is_word(at) && (contains(kTrailing, word) || is_macro(word));
  }

  // Macros that stand for specifiers of functions and fields: "MACRO int f();", "int MACRO f();",
  // "void f() MACRO(x);", "int x MACRO(y);".
  void mask_specifiers(std::size_t at) {
    if (contains(kStatements, word_at(text_, at))) return;
    read_pieces(at);
    std::size_t words = 0;  // that may be a type or a name
    bool parameters = false;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      if (has_brackets(i)) parameters = words > 1 || i > 1;
      if (!is_word(i) || contains(kSpecifiers, text_of(pieces_[i]))) continue;
      if (!is_macro(text_of(pieces_[i]))) {
        ++words;
        continue;
      }
      const std::size_t next = has_brackets(i + 1) ? i + 2 : i + 1;
      const bool leads = words == 0 && !parameters && names_more(next);
      const bool stands_between = words > 0 && !parameters && next == i + 1 && is_word(next) &&
                                  has_brackets(next + 1) && !is_macro(text_of(pieces_[next]));
      const bool trails =
          ((parameters || words > 1) && ends_head(next)) && (parameters || next == i + 2);
      if (leads || stands_between || trails) {
        blank(pieces_[i].start, pieces_[next - 1].end);
      } else {
        ++words;
      }
      i = next - 1;
    }
  }

  // Whether a type and a name follow up to the parameters or the end.
  bool names_more(std::size_t at) const {
    std::size_t words = 0;
    for (; at < pieces_.size(); ++at) {
      if (has_brackets(at)) {
        const bool pointer = text_.substr(pieces_[at].start + 1, 1) == "*";
        return words > 1 || (words == 1 && pointer && has_brackets(at + 1));
      }
      if (pieces_[at].kind == Piece::Kind::kEnd) {
        const char c = text_[pieces_[at].start];
        return words > 1 && (c == ';' || c == '=' || c == '[');
      }
      if (is_word(at) && !contains(kSpecifiers, text_of(pieces_[at]))) ++words;
    }
    return false;
  }

  std::string_view text_;
  std::vector<Piece> pieces_;
  std::optional<std::string> masked_;
};

}  // namespace

std::optional<std::string> mask_macros(std::string_view text) { return Masking(text).run(); }

}  // namespace kestrix::index
