#include "kestrix/languages/c_family/masking.h"

#include <algorithm>
#include <array>

#include "kestrix/languages/symbols.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kLongestArguments = 200;
constexpr std::array<std::string_view, 4> kTypeWords = {"class", "struct", "union", "enum"};
constexpr std::array<std::string_view, 7> kDeclarationWords = {
    "class", "enum", "extern", "namespace", "struct", "template", "typedef"};

template <class List>
bool contains(const List& list, std::string_view word) {
  return std::ranges::find(list, word) != list.end();
}

bool is_macro(std::string_view word) { return word.size() > 2 && is_upper_case(word); }

class Masking {
 public:
  explicit Masking(std::string_view text) : text_(text) {}

  std::optional<std::string> run() {
    for (std::size_t line = 0; line < text_.size(); line = next_line(line)) {
      std::size_t at = skip_blanks(line);
      if (is_macro(word_at(at))) {
        at = mask_before_declaration(at);
      } else if (word_at(at) == "template") {
        at = skip_parameters(at + word_at(at).size());
      } else if (word_at(at) == "typedef" || word_at(at) == "friend") {
        at = skip_space(at + word_at(at).size());
      }
      if (contains(kTypeWords, word_at(at))) mask_in_head(at + word_at(at).size());
    }
    return std::move(masked_);
  }

 private:
  std::string_view word_at(std::size_t at) const {
    std::size_t end = at;
    while (end < text_.size() && ascii::is_word(text_[end])) ++end;
    return text_.substr(at, end - at);
  }
  std::size_t next_line(std::size_t at) const {
    return std::min(text_.find('\n', at), text_.size() - 1) + 1;
  }
  std::size_t skip_blanks(std::size_t at) const {
    return std::min(text_.find_first_not_of(" \t", at), text_.size());
  }
  std::size_t skip_space(std::size_t at) const {
    return std::min(text_.find_first_not_of(" \t\r\n", at), text_.size());
  }

  // Behind "<…>" or "(…)" when it stands at `at` and closes soon; else `at`.
  std::size_t skip_bracketed(std::size_t at, char open, char close) const {
    if (at >= text_.size() || text_[at] != open) return at;
    std::size_t depth = 0;
    const std::size_t end = std::min(text_.size(), at + kLongestArguments);
    for (std::size_t i = at; i < end; ++i) {
      if (text_[i] == open) ++depth;
      if (text_[i] == close && --depth == 0) return i + 1;
    }
    return at;
  }
  std::size_t skip_parameters(std::size_t at) const {
    return skip_space(skip_bracketed(skip_space(at), '<', '>'));
  }
  std::size_t macro_end(std::size_t at) const {
    return skip_bracketed(at + word_at(at).size(), '(', ')');
  }

  void blank(std::size_t start, std::size_t end) {
    if (!masked_) masked_.emplace(text_);
    for (std::size_t i = start; i < end; ++i) {
      if (text_[i] != '\n') (*masked_)[i] = ' ';
    }
  }

  // "MACRO namespace a {", and "MACRO" alone on its line before a word or a comment.
  std::size_t mask_before_declaration(std::size_t at) {
    const std::size_t end = macro_end(at);
    const std::size_t next = skip_space(end);
    const bool code = !word_at(next).empty() || text_.substr(next).starts_with("//") ||
                      text_.substr(next).starts_with("/*");
    const bool alone = code && skip_blanks(end) < next;
    if (next == end || (!alone && !contains(kDeclarationWords, word_at(next)))) return at;
    blank(at, end);
    return next;
  }

  // "class MACRO(x) MACRO Name {"; `at` is behind "class".
  void mask_in_head(std::size_t at) {
    at = skip_space(at);
    while (is_macro(word_at(at))) {
      const std::size_t end = macro_end(at);
      const std::size_t next = skip_space(end);
      if (next == end || !(is_macro(word_at(next)) || opens_body(next))) return;
      blank(at, end);
      at = next;
    }
  }

  // Whether a class's name stands at `at`, and behind it its bases or its body.
  bool opens_body(std::size_t at) const {
    const std::string_view name = word_at(at);
    if (name.empty() || name == "final") return false;
    at = skip_parameters(at + name.size());
    if (word_at(at) == "final") at = skip_space(at + 5);
    if (at >= text_.size()) return false;
    return text_[at] == '{' || (text_[at] == ':' && !text_.substr(at).starts_with("::"));
  }

  std::string_view text_;
  std::optional<std::string> masked_;
};

}  // namespace

std::optional<std::string> mask_macros(std::string_view text) { return Masking(text).run(); }

}  // namespace kestrix::index
