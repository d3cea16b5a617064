#pragma once

#include <set>

#include "kestrix/host/evidence/score_sheet.h"

namespace kestrix {

/// The product's own error types, and what shows that a file is about errors.
struct ErrorEvidence {
  std::set<index::DeclarationRef> types;
  ScoreSheet sheet;
  ScoreSheet handling;  ///< the same, with those that only define errors behind the others
};

/// Where errors are defined, made, told apart, handled and answered.
ErrorEvidence error_evidence_of(const CodeEvidence& evidence);

/// Adds what the names of declarations say of errors, by who uses them, and what frameworks find by
/// such names. `types` are scored by what is done with them instead.
void add_error_names(const CodeEvidence& evidence, const std::set<index::DeclarationRef>& types,
                     ScoreSheet& sheet);

/// Whether a declaration's name says that it is about errors.
bool names_error(std::string_view name);

}  // namespace kestrix
