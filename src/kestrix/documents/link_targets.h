#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrix::index {

/// How many addresses of other sites a line holds.
inline std::uint32_t count_addresses(std::string_view line) {
  std::uint32_t count = 0;
  for (auto at = line.find("://"); at != line.npos; at = line.find("://", at + 3)) ++count;
  return count;
}

/// Calls `visit(target)` for each link of a line that its markup shows: "](target)",
/// "href="target"", ":doc:`target`", ":doc:`title <target>`", "link:target[", "xref:target[".
template <class Visit>
void for_each_link(std::string_view line, Visit visit) {
  struct Form {
    std::string_view open;
    std::string_view close;
  };
  constexpr std::array kForms{Form{"](", ") "}, Form{"href=\"", "\""}, Form{":doc:`", "`"},
                              Form{"link:", "["}, Form{"xref:", "["}};
  for (const auto& [open, close] : kForms) {
    for (auto at = line.find(open); at != line.npos; at = line.find(open, at)) {
      at += open.size();
      const auto end = line.find_first_of(close, at);
      if (end == line.npos) break;
      auto target = line.substr(at, end - at);
      if (target.ends_with('>')) {
        target.remove_suffix(1);
        target.remove_prefix(std::min(target.rfind('<') + 1, target.size()));
      }
      visit(target);
      at = end;
    }
  }
}

}  // namespace kestrix::index
