#pragma once

#include <string>
#include <vector>

#include "kestrix/host/decisions/document_evidence.h"
#include "kestrix/host/reason.h"

namespace kestrix {

/// The design documents among `documents`, best first, each distinct path once, each with what
/// decided. What counts and in which order is told at `decision_docs`, which cuts this list.
///
/// With `evidence`, which may be null, prose counts too that names the code, that is linked where
/// developers look, or that the code names; and what is known of a text can rule it out.
std::vector<Pick> rank_design_documents(const std::vector<std::string>& documents,
                                        const DocumentEvidence* evidence);

}  // namespace kestrix
