#include <toml++/toml.h>

#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "kestrix/formats/limits.h"
#include "kestrix/formats/nesting.h"
#include "kestrix/formats/scalar_readers.h"
#include "kestrix/text/lines.h"

namespace kestrix::index {
namespace {

// Whether a document is nested deeper or holds more values than is read: the library calls itself
// for each part of a dotted key when it frees a document, and bounds only brackets.
class Scan {
 public:
  explicit Scan(std::string_view text) : text_(text) {}

  bool is_crowded() {
    while (at_ < text_.size() && depth_ <= kDeepest && values_ <= kMostValues) step();
    return depth_ > kDeepest || values_ > kMostValues;
  }

 private:
  void step() {
    const char c = text_[at_];
    if (c == '"' || c == '\'') return skip_string(c);
    if (c == '#') at_ = std::min(text_.find('\n', at_), text_.size() - 1);
    count(text_[at_++]);
  }

  void skip_string(char quote) {
    const std::string three(3, quote);
    const bool long_one = text_.substr(at_).starts_with(three);
    const std::string_view end = long_one ? std::string_view(three) : text_.substr(at_, 1);
    for (at_ += end.size(); at_ < text_.size(); ++at_) {
      if (text_.substr(at_).starts_with(end)) break;
      if (!long_one && text_[at_] == '\n') return;
      if (quote == '"' && text_[at_] == '\\') ++at_;
    }
    at_ = std::min(at_ + end.size(), text_.size());
  }

  // A level is a bracket or, at the bottom, a line; its keys end with a comma or the line.
  void count(char c) {
    if (c == '.') return descend();
    if (c == '[' || c == '{') {
      dots_.push_back(0);
      ++depth_;
      ++values_;
    } else if ((c == ']' || c == '}') && dots_.size() > 1) {
      depth_ -= dots_.back() + 1;
      dots_.pop_back();
    } else if (c == ',' || c == '\n') {
      ++values_;
      depth_ -= dots_.back();
      dots_.back() = 0;
    }
  }

  void descend() {
    ++dots_.back();
    ++depth_;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::vector<std::size_t> dots_ = {0};  // of the keys of each level
  std::size_t depth_ = 0;
  std::size_t values_ = 0;
};

template <class Value>
std::string written(const Value& value) {
  if constexpr (std::is_same_v<Value, bool>) {
    return value ? "true" : "false";
  } else {
    std::ostringstream out;
    out << value;
    return std::move(out).str();
  }
}

class Walk {
 public:
  explicit Walk(Nesting& nesting) : nesting_(nesting) {}

  // NOLINTNEXTLINE(misc-no-recursion): as deep as Nesting opens
  void visit(const toml::node& node) {
    if (const toml::table* table = node.as_table()) {
      if (!nesting_.open_map()) return;
      for (const auto& [key, value] : *table) {
        nesting_.key(key.str());
        visit(value);
      }
      nesting_.close();
    } else if (const toml::array* array = node.as_array()) {
      if (!nesting_.open_list()) return;
      for (const toml::node& element : *array) visit(element);
      nesting_.close();
    } else {
      visit_value(node);
    }
  }

 private:
  void visit_value(const toml::node& node) {
    const std::size_t line = node.source().begin.line;
    if (const auto* text = node.as_string()) return nesting_.scalar(text->get(), line);
    node.visit([&](const auto& value) {
      if constexpr (toml::is_value<decltype(value)>) nesting_.scalar(written(value.get()), line);
    });
  }

  Nesting& nesting_;
};

// The line of the damage; 0 when there is none, and the document has been visited.
std::size_t read_whole(std::string_view text, const ScalarVisitor& visit) {
  toml::table document;
  try {
    document = toml::parse(text);
  } catch (const toml::parse_error& error) {
    return std::max<std::size_t>(error.source().begin.line, 1);
  }
  Nesting nesting(visit);
  Walk(nesting).visit(document);
  return 0;
}

std::string_view first_lines(std::string_view text, std::size_t count) {
  std::string_view rest = text;
  for (; count > 0; --count) take_line(rest);
  return text.substr(0, text.size() - rest.size());
}

}  // namespace

void read_toml_scalars(std::string_view text, const ScalarVisitor& visit) {
  if (Scan(text).is_crowded()) return;
  const std::size_t damaged = read_whole(text, visit);
  if (damaged > 1) read_whole(first_lines(text, damaged - 1), visit);
}

}  // namespace kestrix::index
