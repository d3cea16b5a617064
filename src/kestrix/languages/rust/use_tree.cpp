#include "kestrix/languages/rust/use_tree.h"

#include <algorithm>
#include <utility>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kLongestPrefix = 1000;

bool is_word_byte(char c) {
  return ascii::is_word(c) || c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

class UseTree {
 public:
  UseTree(std::string_view text, const Lexis& lexis) : text_(text), lexis_(lexis) {}

  std::vector<UseLeaf> run() {
    while (at_ < text_.size() && text_[at_] != ';') step();
    finish();
    return std::move(leaves_);
  }

 private:
  void step() {
    if (const std::size_t comment = comment_length(text_.substr(at_), lexis_); comment > 0) {
      at_ += comment;
      return;
    }
    const char c = text_[at_];
    if (is_word_byte(c)) return take_word();
    ++at_;
    if (c == '*') {
      push_name();
      name_ = "*";
    } else if (c == '{') {
      open();
    } else if (c == ',') {
      finish();
    } else if (c == '}') {
      finish();
      close();
    }
  }

  void take_word() {
    const std::size_t start = at_;
    while (at_ < text_.size() && is_word_byte(text_[at_])) ++at_;
    std::string_view word = text_.substr(start, at_ - start);
    if (word == "as") {
      renames_ = true;
    } else if (renames_) {
      alias_ = word;
    } else if (word == "r" && text_.substr(at_).starts_with('#')) {
      ++at_;
    } else {
      push_name();
      name_ = word.starts_with('$') ? word.substr(1) : word;
    }
  }

  // What came before the last name belongs to the prefix.
  void push_name() {
    if (name_.empty()) return;
    if (!prefix_.empty()) prefix_ += "::";
    prefix_ += name_;
    name_ = {};
  }

  void open() {
    push_name();
    outer_.push_back(prefix_.size());
  }

  void close() {
    if (!outer_.empty()) outer_.pop_back();
    prefix_.resize(std::min(prefix_.size(), outer_.empty() ? 0 : outer_.back()));
  }

  // "self" in a list is the module before the list.
  void finish() {
    if (name_ == "self" && !prefix_.empty()) {
      const std::size_t at = prefix_.rfind("::");
      const bool one = at == std::string::npos;
      add(one ? "" : prefix_.substr(0, at), prefix_.substr(one ? 0 : at + 2));
    } else if (!name_.empty()) {
      add(prefix_, std::string(name_));
    }
    name_ = alias_ = {};
    renames_ = false;
    prefix_.resize(std::min(prefix_.size(), outer_.empty() ? 0 : outer_.back()));
  }

  void add(std::string prefix, std::string name) {
    if (prefix.size() > kLongestPrefix) return;
    leaves_.push_back({std::move(prefix), std::move(name), alias_});
  }

  std::string_view text_;
  const Lexis& lexis_;
  std::size_t at_ = 0;
  std::string prefix_;
  std::string_view name_;
  std::string_view alias_;
  bool renames_ = false;
  std::vector<std::size_t> outer_;  // sizes of the prefixes of the lists that are open
  std::vector<UseLeaf> leaves_;
};

}  // namespace

std::vector<UseLeaf> leaves_of(std::string_view text, const Lexis& lexis) {
  return UseTree(text, lexis).run();
}

}  // namespace kestrix::index
