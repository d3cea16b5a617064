#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kestrix/index/cached_indexes.h"

namespace kestrix::program {

/// Removes the cached indexes that were not written to for so many days (all of them without a
/// number) and returns what they were.
std::vector<index::CachedIndex> remove_indexes(std::optional<unsigned> days);

/// One line an index: its repository, its size, its age and its file.
std::string cache_as_text(std::span<const index::CachedIndex> indexes, bool removed);
std::string cache_as_json(std::span<const index::CachedIndex> indexes, bool removed);

}  // namespace kestrix::program
