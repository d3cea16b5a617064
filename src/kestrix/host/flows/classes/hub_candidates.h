#pragma once

#include <vector>

#include "kestrix/host/flows/classes/path_patterns.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

/// A pattern of paths of which some files name many.
struct HubCandidate {
  PathPatterns::Key key;
  std::vector<index::FileId> hubs;
  double promise;
};

/// The patterns that hubs name most of, the most promising first.
std::vector<HubCandidate> hub_candidates(const CodeEvidence& code, const NamingGraph& graph,
                                         const PathPatterns& patterns);

}  // namespace kestrix
