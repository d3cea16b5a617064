#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// A path in code ("crate::a::b") with the number of times that it is written.
struct RustPath {
  std::string path;
  std::size_t offset = 0;  ///< of its first occurrence
  std::uint32_t count = 0;
};

/// The paths that code names without a use declaration, each once, in source order: those that
/// start with crate, self or super, and those that start with what may be a crate or a module.
/// Paths within macros count, those within `excluded` (ascending ranges of bytes) do not.
std::vector<RustPath> paths_of(
    const SourceTree& tree, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& excluded);

}  // namespace kestrix::index
