#pragma once

#include <span>

#include "kestrix/host/data_models/data_types.h"
#include "kestrix/host/evidence/score_sheet.h"

namespace kestrix {

/// Of the files that name most of the types that belong together in one list: what registers them
/// with the storage, what hands them on.
void add_gatherers(const CodeEvidence& evidence, std::span<const DataType> types,
                   ScoreSheet& sheet);

/// Of the files whose functions are called after a type that another file declares: where the
/// language gives types no methods, they make the type's values and work on them.
void add_workers(const CodeEvidence& evidence, std::span<const DataType> types, ScoreSheet& sheet);

}  // namespace kestrix
