#pragma once

#include <algorithm>
#include <string_view>

namespace kestrix {

/// Takes the first line off `text`, without the line break that ends it.
inline std::string_view take_line(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

/// Calls `visit(line)` for each line, without its line break.
template <class Visit>
void for_each_line(std::string_view text, Visit visit) {
  while (!text.empty()) visit(take_line(text));
}

}  // namespace kestrix
