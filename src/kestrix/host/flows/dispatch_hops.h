#pragma once

#include <vector>

#include "kestrix/host/flows/dispatch_roots.h"

namespace kestrix {

/// Adds what has to do with those that lead to the entry points, `hubs`: who calls them, what they
/// and the entry points call or bear.
void add_hops(ScoreSheet& sheet, const CodeEvidence& evidence, const NamingGraph& graph,
              const DispatchRoots& roots, const std::vector<index::FileId>& hubs,
              const std::vector<index::FileId>& holders);

}  // namespace kestrix
