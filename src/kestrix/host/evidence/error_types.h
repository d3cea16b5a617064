#pragma once

#include <set>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// The product's own error types and error values, by what they are made from and what is done with
/// them, not by their names: what derives from the language's error types through any number of own
/// types, what is thrown, what an error value is made for. Ascending.
std::set<index::DeclarationRef> error_types(const CodeEvidence& evidence);

}  // namespace kestrix
