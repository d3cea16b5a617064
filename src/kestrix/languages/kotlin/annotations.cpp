#include "kestrix/languages/kotlin/annotations.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "kestrix/languages/code/names.h"
#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/kotlin/text.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index::kotlin {
namespace {

constexpr auto kDeclaring = std::to_array<std::string_view>(
    {"class", "companion", "fun", "interface", "object", "typealias", "val", "var"});
constexpr auto kModifiers = std::to_array<std::string_view>(
    {"abstract", "actual",   "annotation", "const",    "crossinline", "data",    "enum",
     "expect",   "external", "final",      "infix",    "inline",      "inner",   "internal",
     "lateinit", "noinline", "open",       "operator", "override",    "private", "protected",
     "public",   "sealed",   "suspend",    "tailrec",  "value",       "vararg"});

template <class Words>
bool contains(const Words& words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

std::size_t word_length(std::string_view text, bool dotted = false) {
  const auto in_word = [dotted](char c) {
    return ascii::is_word(c) || (dotted && c == '.') || static_cast<unsigned char>(c) >= 0x80;
  };
  return static_cast<std::size_t>(std::ranges::find_if_not(text, in_word) - text.begin());
}

const CallRule* rule_of(std::string_view annotation) {
  const auto known = [&](const CallRule& rule) { return rule.callee == annotation; };
  const auto found = std::ranges::find_if(jvm::kCalls, known);
  return found == jvm::kCalls.end() ? nullptr : &*found;
}

class Reader {
 public:
  Reader(std::string_view text, std::span<const Declaration> declarations)
      : text_(text), declarations_(declarations) {}

  std::vector<Mention> read() {
    const auto annotations = masked_annotations(text_);
    for (std::size_t first = 0; first < annotations.size();) {
      std::size_t last = first;  // of those that follow each other, before the same
      while (last + 1 < annotations.size() &&
             behind_blanks(end_of(annotations[last])) == start_of(annotations[last + 1])) {
        ++last;
      }
      const std::size_t before = found_.size();
      for (; first <= last; ++first) read(annotations[first]);
      const std::uint32_t holder = holder_behind(end_of(annotations[last]));
      for (std::size_t at = before; at < found_.size(); ++at) found_[at].within = holder;
    }
    return std::move(found_);
  }

 private:
  std::size_t start_of(std::string_view part) const {
    return static_cast<std::size_t>(part.data() - text_.data());
  }
  std::size_t end_of(std::string_view part) const { return start_of(part) + part.size(); }

  std::size_t behind_blanks(std::size_t at) const {
    return std::min(text_.find_first_not_of(" \t\r\n", at), text_.size());
  }

  // Offsets ascend.
  std::uint32_t line_of(std::size_t offset) {
    line_ += static_cast<std::uint32_t>(
        std::count(text_.begin() + static_cast<std::ptrdiff_t>(counted_),
                   text_.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
    counted_ = offset;
    return line_;
  }

  // The declaration that the annotations before the place belong to; what is none, a parameter or
  // an expression, leaves them to the declaration around it.
  std::uint32_t holder_behind(std::size_t at) {
    std::string_view word;
    for (;;) {
      at = behind_blanks(at);
      word = text_.substr(at, word_length(text_.substr(at)));
      if (!contains(kModifiers, word)) break;
      at += word.size();
    }
    const std::uint32_t line = line_of(at);
    const bool declares = contains(kDeclaring, word);
    while (next_ < declarations_.size() && declarations_[next_].line < line) ++next_;
    if (next_ < declarations_.size()) {
      const Declaration& candidate = declarations_[next_];
      const bool entry = candidate.line == line && candidate.name == word;
      if (declares || entry) return static_cast<std::uint32_t>(next_ + 1);
    }
    auto around = static_cast<std::uint32_t>(next_);
    while (around > 0 && declarations_[around - 1].last_line < line)
      around = declarations_[around - 1].container;
    return around;
  }

  void add(std::string_view name, Role role, std::uint32_t line) {
    if (name.empty() || name.size() > kLongestMention) return;
    found_.push_back({.name = std::string(name), .role = role, .line = line, .count = 1});
  }

  void read(std::string_view annotation) {
    const std::uint32_t line = line_of(start_of(annotation));
    annotation.remove_prefix(1);
    const std::string_view name = annotation.substr(0, word_length(annotation, true));
    // What is no type stands in a comment.
    if (!starts_in_upper_case(name.substr(name.rfind('.') + 1))) return;
    add(name, Role::kAnnotates, line);
    read_arguments(annotation.substr(name.size()), rule_of(name), line);
  }

  void read_arguments(std::string_view rest, const CallRule* rule, std::uint32_t line) {
    bool key = rule != nullptr && rule->role == Role::kReads;
    while (!rest.empty()) {
      std::size_t length = string_length(rest, lexis());
      if (length > 0) {
        read_string(rest.substr(0, length), key, line);
        key = false;
      } else if ((length = word_length(rest, true)) > 0) {
        read_name(rest.substr(0, length), rest.substr(length), rule, line);
      }
      rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
  }

  void read_string(std::string_view literal, bool key, std::uint32_t line) {
    const std::string_view content = literal_content(literal);
    if (key) {
      if (const std::string_view name = jvm::key_of(content); name_path(name)) {
        add(name, Role::kReads, line);
      }
    } else if (may_name_something(content)) {
      add(content, Role::kString, line);
    }
  }

  void read_name(std::string_view name, std::string_view rest, const CallRule* rule,
                 std::uint32_t line) {
    if (!starts_in_upper_case(name) || name.ends_with('.')) return;
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    const bool special = rule != nullptr && rule->role != Role::kReads;
    if (rest.starts_with("::")) {
      add(name, special ? rule->role : Role::kLists, line);
    } else {
      add(name, rest.starts_with('(') ? Role::kAnnotates : Role::kLists, line);
    }
  }

  std::string_view text_;
  std::span<const Declaration> declarations_;
  std::vector<Mention> found_;
  std::size_t counted_ = 0;
  std::uint32_t line_ = 1;
  std::size_t next_ = 0;  // the first declaration that no place before stood behind
};

}  // namespace

std::vector<Mention> hidden_mentions(const SourceTree& tree,
                                     std::span<const Declaration> declarations) {
  return Reader(tree.text(), declarations).read();
}

}  // namespace kestrix::index::kotlin
