#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix {

/// A class of entry points: files that play the same part, to which one dispatch may lead.
struct EntryPointClass {
  std::string name;                ///< the pattern or the directory that selects them
  std::vector<std::string> roots;  ///< ascending
  std::string sign;                ///< what made them a class, in one line

  friend bool operator==(const EntryPointClass&, const EntryPointClass&) = default;
};

/// How many classes the page shows at most.
inline constexpr std::size_t MAX_ENTRY_POINT_CLASSES = 8;

/// The class of the files among `paths` that a pattern selects; see `PathGlob` for its form.
/// Throws `BadGlob`.
EntryPointClass entry_points_matching(std::string_view pattern, std::span<const std::string> paths);

}  // namespace kestrix
