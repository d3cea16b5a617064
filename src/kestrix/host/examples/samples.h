#pragma once

#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// A sample, and the product's files that it names.
struct Sample {
  index::FileId file;
  std::vector<index::FileId> reached;  ///< ascending
};

/// The samples that show the most of a library by the least code, best first, then by path: whole
/// programs, which nothing else names. None of a program, whose samples show a part of it.
std::vector<Sample> samples_of(const CodeEvidence& code);

}  // namespace kestrix
