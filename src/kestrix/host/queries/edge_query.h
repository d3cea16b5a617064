#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/index/index.h"

namespace kestrix {

/// Which edges are asked for. Patterns are those of `PathGlob`; an empty list takes all.
struct EdgeQuery {
  std::vector<std::string> to;
  std::vector<std::string> from;
  std::vector<std::string> within;  ///< both ends
};

/// A dependency between two files or, summed up, between two folders.
struct FoundEdge {
  std::string source;
  std::string target;
  double weight = 0;
  std::uint64_t edges = 1;  ///< how many dependencies of files it stands for

  friend bool operator==(const FoundEdge&, const FoundEdge&) = default;
};

/// By source, then target. Throws `BadGlob`.
std::vector<FoundEdge> find_edges(const index::RepositoryIndex& index, const EdgeQuery& query);

/// The edges of a shortest way from one file to another, in their order; of several the first by
/// the paths on it. Empty when there is none or the files are one. Throws `Error`, which names the
/// path, when the index does not know a file.
std::vector<FoundEdge> shortest_way(const index::RepositoryIndex& index, std::string_view from,
                                    std::string_view to);

/// The edges between different folders, summed; a folder's path is cut to `levels` pieces, 0 for
/// all. Files at the top are in the folder ".". By source, then target.
std::vector<FoundEdge> sum_by_folder(const std::vector<FoundEdge>& edges, unsigned levels);

/// The folder of a path, cut to `levels` pieces.
std::string_view folder_of(std::string_view path, unsigned levels);

}  // namespace kestrix
