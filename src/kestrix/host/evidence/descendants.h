#pragma once

#include <cstddef>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// The product's types below others, in all generations. For one pass over all types: where types
/// stand in long chains or circles, all that are below each of them are too many, so after a number
/// of them only those count that name their base.
class Descendants {
 public:
  explicit Descendants(const CodeEvidence& evidence) : evidence_(evidence) {}

  /// Ascending, without the type itself; some five thousand at most.
  std::vector<index::DeclarationRef> of(index::DeclarationRef type);

 private:
  const CodeEvidence& evidence_;
  std::size_t looked_at_ = 0;
};

}  // namespace kestrix
