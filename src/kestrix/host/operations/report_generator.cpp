#include "kestrix/workers/report_generator.h"

#include <set>

namespace kestrix {
namespace {

std::string_view directory_of(std::string_view path) {
  const auto slash = path.rfind('/');
  return path.substr(0, slash == path.npos ? 0 : slash);
}

}  // namespace

ClusterInputs cluster_inputs(const Repository& repository, const PathSet& paths) {
  FileGraph graph =
      repository.graph_among(std::vector<std::string_view>(paths.begin(), paths.end()));
  std::set<std::string_view> units;
  for (const std::string_view file : graph.files) units.insert(directory_of(file));
  return {{graph.files.begin(), graph.files.end()},
          {units.begin(), units.end()},
          std::move(graph.edges)};
}

}  // namespace kestrix
