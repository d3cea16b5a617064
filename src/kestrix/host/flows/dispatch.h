#pragma once

#include <span>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/flows/handlers.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

/// What the flows of a repository are looked for in; built once for an answer.
struct FlowEvidence {
  explicit FlowEvidence(const CodeEvidence& evidence)
      : code(evidence), graph(evidence), handlers(framework_handlers(evidence)) {}

  const CodeEvidence& code;
  NamingGraph graph;
  std::map<index::FileId, HandlerSign> handlers;
};

/// What leads from outside of a repository to one class of entry points: who names them, through
/// what they are called, where such a product starts. No root is on the sheet.
ScoreSheet dispatch_sheet(const FlowEvidence& evidence, std::span<const index::FileId> roots);

}  // namespace kestrix
