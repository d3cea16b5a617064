#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {

/// A class of entry points: files that play the same part, to which one dispatch may lead.
struct EntryPointClass {
  std::string name;                ///< the pattern or the directory that selects them
  std::vector<std::string> roots;  ///< ascending
  std::string sign;                ///< what made them a class, in one line

  friend bool operator==(const EntryPointClass&, const EntryPointClass&) = default;
};

/// How many classes `entry_point_classes` returns at most.
inline constexpr std::size_t MAX_ENTRY_POINT_CLASSES = 5;

/// The class of the files among `paths` that a pattern selects; see `PathGlob` for its form.
/// Throws `BadGlob`.
EntryPointClass entry_points_matching(std::string_view pattern, std::span<const std::string> paths);

/// The classes of entry points that the structure shows.
///
/// A class is the files of one directory, without those of directories below it, that take part in
/// a dependency: at least `DISPATCH_MIN_ROOTS` of `paths`, several of which one file outside the
/// directory uses. Several means as many as a shared dispatch has to reach, and no fewer than
/// `DISPATCH_MIN_ROOTS`. A file is used when the edge weighs more than the import alone: a package
/// that only hands its files on is no dispatch. Only edges among `paths` count. The class that one
/// file reaches most of comes first, then by directory; at most `limit`.
///
/// Linear in the edges, plus a sort of the classes.
std::vector<EntryPointClass> entry_point_classes(std::span<const std::string> paths,
                                                 std::span<const FileEdge> edges,
                                                 std::size_t limit = MAX_ENTRY_POINT_CLASSES);

}  // namespace kestrix
