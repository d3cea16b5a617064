#pragma once

#include <span>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

/// What leads from outside of a repository to one class of entry points: who names them, through
/// what they are called, where such a product starts. No root is on the sheet.
ScoreSheet dispatch_sheet(const CodeEvidence& evidence, const NamingGraph& graph,
                          std::span<const index::FileId> roots);

}  // namespace kestrix
