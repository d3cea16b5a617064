#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kestrix/workers/wiki_cluster.h"

namespace kestrix::bench {

/// A made repository: paths of 30 to 80 bytes with shared prefixes, a tenth of them tests, and
/// imports as real ones have them: a few files that everything imports, many with one importer.
struct World {
  std::vector<std::string> files;  ///< production files
  std::vector<std::string> tests;
  std::vector<FileEdge> edges;  ///< views into `files` and `tests`; in random order
};

/// The same world for the same numbers. About one file for every four edges.
World make_world(std::size_t edges);

/// `count` of the world's files that lie in one folder tree, as entry points do.
std::vector<std::string> entry_points(const World& world, std::size_t count);

}  // namespace kestrix::bench
