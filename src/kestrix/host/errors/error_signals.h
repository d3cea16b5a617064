#pragma once

#include <set>

#include "kestrix/host/evidence/score_sheet.h"

namespace kestrix {

/// The product's own error types, and what shows that a file is about errors.
struct ErrorEvidence {
  std::set<index::DeclarationRef> types;
  ScoreSheet sheet;
  ScoreSheet defining;  ///< what others do with the types that a file defines, alone
  ScoreSheet handling;  ///< the whole sheet, with those that only define errors behind the others
};

/// Where errors are defined, made, told apart, handled and answered.
ErrorEvidence error_evidence_of(const CodeEvidence& evidence);

}  // namespace kestrix
