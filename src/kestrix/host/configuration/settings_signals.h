#pragma once

#include "kestrix/host/evidence/score_sheet.h"

namespace kestrix {

/// What shows that a product is configured by a file: files of keys that the code reads, types and
/// functions that are filled from the environment, a file or flags, and who hands them on.
ScoreSheet settings_sheet(const CodeEvidence& evidence);

}  // namespace kestrix
