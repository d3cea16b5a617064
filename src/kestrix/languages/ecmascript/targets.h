#pragma once

#include <re2/re2.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/formats/json.h"

namespace kestrix::index::ecmascript {

/// What an `exports` or `imports` map says of a key ("." or "./a", "#a"): the targets of all its
/// conditions in the order in which they are written, a "*" replaced. Empty when the map lacks the
/// key.
std::vector<std::string> targets_of(const Json& map, std::string_view key);

/// Where the source of a built file may stand: paths without extension, best first, for a path such
/// as "dist/esm/a.js". Empty when it is in no folder for built files.
std::vector<std::string> sources_of(std::string_view built);

/// The expression of a workspace's pattern ("packages/*", "apps/**", "libs/{a,b}") over folders.
std::unique_ptr<RE2> folder_pattern(std::string_view glob);

}  // namespace kestrix::index::ecmascript
