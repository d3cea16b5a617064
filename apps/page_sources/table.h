#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrix::program {

/// Rows of a label and a text, the texts aligned.
class Table {
 public:
  explicit Table(std::string_view indent = "") : indent_(indent) {}

  void add(std::string_view label, std::string text) {
    width_ = std::max(width_, label.size());
    rows_.emplace_back(label, std::move(text));
  }

  std::string text() const {
    std::string out;
    for (const auto& [label, text] : rows_) {
      fmt::format_to(std::back_inserter(out), "{}{:<{}}  {}\n", indent_, label, width_, text);
    }
    return out;
  }

 private:
  std::string_view indent_;
  std::size_t width_ = 0;
  std::vector<std::pair<std::string, std::string>> rows_;
};

}  // namespace kestrix::program
