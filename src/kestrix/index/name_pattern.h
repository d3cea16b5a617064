#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// A name pattern: "%" is any run of characters, the empty one included, nothing else is special.
/// The case of ASCII letters does not count, that of all others does.
class NamePattern {
 public:
  explicit NamePattern(std::string_view pattern);

  /// Linear in the name's length for patterns with one run at most, as all common ones are.
  bool matches(std::string_view name) const;

 private:
  std::string first_;                // what a name begins with; all of it without a "%"
  std::vector<std::string> middle_;  // found behind it one after the other
  std::string last_;                 // what it ends with
  bool exact_ = false;
};

}  // namespace kestrix::index
