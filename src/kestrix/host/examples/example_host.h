#pragma once

#include <string>
#include <vector>

#include "kestrix/host/examples/test_evidence.h"

namespace kestrix {

/// The generator as the recipe of the examples page sees it: without others' tests, and with what
/// tests name for edges, as far as the page's rule is to count it.
struct ExampleHost {
  using Path = std::string;
  using PathSet = kestrix::PathSet;

  const WikiGenerator& generator;
  const TestEvidence& evidence;

  std::vector<std::string> _test_files() const { return evidence.paths(); }
  std::vector<std::string> _planner_paths() const { return generator._planner_paths(); }
  std::vector<FileEdge> _file_edges(const PathSet& paths) const { return evidence.edges(paths); }
};

}  // namespace kestrix
