#pragma once

#include "kestrix/host/data_models/data_types.h"

namespace kestrix {

/// How much a type is data, by what it holds and does and by what those who name it do with it.
/// `beside_stored`: the product has types that are stored.
double likeness_of(const DataType& type, const index::DeclarationView& row, bool beside_stored);

}  // namespace kestrix
