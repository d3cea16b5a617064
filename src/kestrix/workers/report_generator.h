#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "kestrix/index/repository.h"
#include "kestrix/utils/ordered_map.h"
#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {

/// Distinct paths, in no order.
using PathSet = std::unordered_set<std::string, StringHash, std::equal_to<>>;

/// What the clustering of a set of files starts from.
struct ClusterInputs {
  std::vector<std::string> files;  ///< those of the paths that the index knows, ascending
  std::vector<std::string> units;  ///< the directories that hold them, ascending
  std::vector<FileEdge> edges;     ///< the dependencies among the paths, by source, then target
};

/// Collects the evidence-backed dependencies whose two ends both lie in `paths`. The edges' paths
/// stay valid as long as `repository` does.
ClusterInputs cluster_inputs(const Repository& repository, const PathSet& paths);

}  // namespace kestrix
