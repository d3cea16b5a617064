#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestrix/utils/ordered_map.h"

namespace kestrix {

/// A root path mapped to the value that stands for it.
using RootMap = OrderedMap<std::string, std::string>;

/// The directory that a component's path pattern covers ("src/domain/**" covers "src/domain"), or
/// none when the pattern names no single directory. A pattern that covers the whole repository
/// has the root "".
std::optional<std::string> root_of_pattern(std::string_view path_pattern);

/// The value of the deepest root that is `path` itself or a directory above it; none when no root
/// covers the path.
std::optional<std::string> most_specific(const RootMap& roots, std::string_view path);

}  // namespace kestrix
