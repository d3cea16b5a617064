#pragma once

#include <string>
#include <vector>

#include "kestrix/host/examples/example_choice.h"

namespace kestrix {

/// The generator as the recipe of the examples page sees it: without others' tests, and with what
/// tests name for edges, as far as the page's rule is to count it.
struct ExampleHost {
  using Path = std::string;
  using PathSet = kestrix::PathSet;

  const WikiGenerator& generator;
  const ExampleChoice& choice;

  std::vector<std::string> _test_files() const { return choice.paths(); }
  std::vector<std::string> _planner_paths() const { return generator._planner_paths(); }
  std::vector<FileEdge> _file_edges(const PathSet& paths) const { return choice.edges(paths); }
};

}  // namespace kestrix
