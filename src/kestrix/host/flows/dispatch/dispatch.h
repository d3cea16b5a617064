#pragma once

#include <span>

#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/flows/dispatch/dispatch_roots.h"
#include "kestrix/host/flows/dispatch/tables.h"
#include "kestrix/host/flows/handlers.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

/// What the flows of a repository are looked for in; built once for an answer.
struct FlowEvidence {
  explicit FlowEvidence(const WikiGenerator& generator)
      : code(generator.code_evidence()),
        graph(code),
        tables(generator.repo_root()),
        handlers(framework_handlers(code, tables)),
        errors(error_types(code)) {}

  const CodeEvidence& code;
  NamingGraph graph;
  mutable TableTexts tables;  // fills itself
  std::map<index::FileId, HandlerSign> handlers;
  std::set<index::DeclarationRef> errors;
};

/// What leads from outside of a repository to one class of entry points: who names them, through
/// what they are called, where such a product starts. No root is on the sheet but one that others
/// of them extend.
Dispatch dispatch_of(const FlowEvidence& evidence, std::span<const index::FileId> roots);

}  // namespace kestrix
