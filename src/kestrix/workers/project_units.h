#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestrix/utils/ordered_map.h"

namespace kestrix {

/// A root path mapped to the value that stands for it.
using RootMap = OrderedMap<std::string, std::string>;

/// The directory that a component's path pattern covers ("src/domain/**" covers "src/domain"), or
/// none when the pattern names no single directory.
///
/// A pattern is a directory followed by pieces that only select files below it ("**", "*",
/// "**/*.py"), or a directory alone. A wildcard within the directory's own path ("*", "?", "[…]",
/// "{…}") makes it name several; "\" before a character takes its meaning away. A pattern that
/// covers the whole repository has the root "", the empty pattern has none.
std::optional<std::string> root_of_pattern(std::string_view path_pattern);

/// The pattern whose root is the directory: `root_of_pattern(pattern_of_root(d)) == d`.
std::string pattern_of_root(std::string_view directory);

/// The value of the deepest root that is `path` itself or a directory above it; none when no root
/// covers the path. Costs one look-up for each directory of the path.
std::optional<std::string> most_specific(const RootMap& roots, std::string_view path);

}  // namespace kestrix
