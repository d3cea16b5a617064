#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>

#include "kestrix/text/ascii.h"

namespace kestrix {

using Names = std::span<const std::string_view>;

/// Whether `name` is one of `names`, which hold no capital, in any case.
inline bool is_among(Names names, std::string_view name) {
  return std::ranges::any_of(names, [name](auto known) { return ascii::equals(name, known); });
}

/// Calls `visit(piece, folder)` for each folder of a path from the top: its name, and the path up
/// to it. Ends when `visit` gives false.
template <class Visit>
void for_each_folder_down(std::string_view path, Visit visit) {
  for (std::size_t begin = 0, slash = 0; (slash = path.find('/', begin)) != std::string_view::npos;
       begin = slash + 1) {
    if (!visit(path.substr(begin, slash - begin), path.substr(0, slash))) return;
  }
}

}  // namespace kestrix
