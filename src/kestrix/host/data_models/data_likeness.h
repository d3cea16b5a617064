#pragma once

#include <vector>

#include "kestrix/host/data_models/data_types.h"

namespace kestrix {

/// Whether a type only says what others do.
bool is_contract(const DataType& type, const index::DeclarationView& row);

/// How much a type is data by what it holds and does, from 0 to 1.
double likeness_by_shape(const DataType& type, const index::DeclarationView& row);

/// The same of a contract by the shapes of those that implement it: 0 where most of them do work.
double likeness_of_contract(const index::DeclarationView& row, std::vector<double> implementers);

/// The types that a product stores, as those of one language meet them.
struct StoredTypes {
  bool any = false;  ///< whether there are several, in any language
  double users = 0;  ///< how many files use the most central ones; 0 where none is of the language
};

/// How much a type of such a shape is data, by its framework and by what those who name it do with
/// it.
double likeness_of(const DataType& type, double shape, const StoredTypes& stored);

}  // namespace kestrix
