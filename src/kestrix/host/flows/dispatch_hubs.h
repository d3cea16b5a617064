#pragma once

#include <vector>

#include "kestrix/host/flows/dispatch_roots.h"

namespace kestrix {

/// Who names each of the files, more than to say what type something has. `named` are the files
/// and what stands for each on the page.
SeenBy namers_of(const CodeEvidence& evidence, const NamingGraph& graph, const DispatchRoots& roots,
                 const std::vector<DispatchRoots::Header>& named);

/// Adds who names the entry points, and returns those that lead to them; ascending.
std::vector<index::FileId> add_hubs(ScoreSheet& sheet, const CodeEvidence& evidence,
                                    const NamingGraph& graph, const DispatchRoots& roots);

}  // namespace kestrix
