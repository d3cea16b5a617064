#pragma once

#include <vector>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/flows/handlers.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

/// Adds where a product starts whose framework finds the entry points by itself: the nearest ones
/// above them. They tell most where nothing else leads to these (`alone`).
void add_starts(ScoreSheet& sheet, const CodeEvidence& evidence, const NamingGraph& graph,
                const std::vector<index::FileId>& roots,
                const std::map<index::FileId, HandlerSign>& handlers, bool alone);

}  // namespace kestrix
