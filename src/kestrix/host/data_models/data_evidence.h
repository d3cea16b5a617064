#pragma once

#include <vector>

#include "kestrix/host/data_models/data_points.h"
#include "kestrix/host/data_models/data_types.h"
#include "kestrix/host/evidence/score_sheet.h"

namespace kestrix {

/// What speaks for each of the product's files being one that a maintainer names when asked for the
/// data: its most central type, how many there are, its neighbours, and what its text defines.
class DataEvidence {
 public:
  /// Linear in declarations and references. `code` must outlive the object.
  explicit DataEvidence(const CodeEvidence& code);

  const ScoreSheet& sheet() const { return sheet_; }
  /// Of those files that come near enough to the best.
  DataPoints points() const;

 private:
  const CodeEvidence& code_;
  ScoreSheet sheet_;
};

}  // namespace kestrix
