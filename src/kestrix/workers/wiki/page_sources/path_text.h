#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix {

/// A path's text. A host whose paths are of another type brings an overload of its own; its path
/// type is hashable, comparable for equality, and ordered by the code points of its text.
inline std::string_view text_of(std::string_view path) { return path; }

/// The path as a result holds it: owned.
inline std::string owned(std::string_view path) { return std::string(path); }

/// The directory part of a path by the POSIX rule: all before the last "/", without trailing "/"
/// unless it is made of nothing else; "" for a path without "/".
inline std::string_view directory_of(std::string_view path) {
  const auto head = path.substr(0, path.rfind('/') + 1);
  const auto last = head.find_last_not_of('/');
  return last == std::string_view::npos ? head : head.substr(0, last + 1);
}

/// The first `limit` entries, as a slice bound takes it: a negative one counts from the end.
template <class T>
std::vector<T> first_entries(std::vector<T> entries, std::ptrdiff_t limit) {
  const auto size = static_cast<std::ptrdiff_t>(entries.size());
  const auto end = limit < 0 ? std::max<std::ptrdiff_t>(size + limit, 0) : std::min(limit, size);
  entries.erase(entries.begin() + end, entries.end());
  return entries;
}

}  // namespace kestrix
