#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/formats/scalars.h"

namespace kestrix::index {

/// Where the reader of a document stands in it. Turns what a parser reports into scalars with their
/// paths.
class Nesting {
 public:
  explicit Nesting(const ScalarVisitor& visit) : visit_(visit) {}

  /// A map or list begins. False, and nothing is opened, when it is nested too deep.
  bool open_map() { return open(false); }
  bool open_list() { return open(true); }
  /// The map or list that was opened last ends.
  void close();

  /// The key of what comes next in the map.
  void key(std::string_view name);
  void scalar(std::string_view value, std::size_t line);

 private:
  struct Open {
    bool list;
    std::size_t elements = 0;
  };

  bool open(bool list);
  void count_element();

  const ScalarVisitor& visit_;
  std::vector<Open> open_;
  std::vector<std::string> path_;  // the current key or place in each map or list that is open
};

}  // namespace kestrix::index
