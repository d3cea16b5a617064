#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrix {

/// A place in a file that can be looked up.
struct Place {
  std::string path;        ///< relative to the repository's root
  std::uint32_t line = 0;  ///< 1-based; 0: the file as a whole
  std::string name;        ///< what stands there; may be empty

  friend bool operator==(const Place&, const Place&) = default;
};

/// One reason for a file to be on a page: what was counted, and where. It is made from the values
/// that decided, never composed afterwards.
struct Reason {
  std::string kind;         ///< a short name in snake case that programs can rely on
  std::string text;         ///< one line for a reader, without the file's own path
  std::uint64_t count = 0;  ///< what `text` counts; 0 when nothing is counted
  std::vector<Place> at;    ///< in a total order; the first few, at most `kMostPlaces`

  friend bool operator==(const Reason&, const Reason&) = default;
};

/// How many places a reason names at most. `Reason::count` tells how many there are.
inline constexpr std::size_t kMostPlaces = 20;

/// A file with the reasons for which it is on a page.
struct Pick {
  std::string path;
  std::vector<Reason> reasons;  ///< strongest first

  friend bool operator==(const Pick&, const Pick&) = default;
};

}  // namespace kestrix
