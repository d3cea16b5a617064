#pragma once

#include <optional>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// The value at the top of a file that a reference to a type gives its type: the one that holds it,
/// or the one whose declaration begins with it.
std::optional<index::DeclarationRef> value_of_type(const CodeEvidence& evidence,
                                                   const index::IndexedReference& to);

}  // namespace kestrix
