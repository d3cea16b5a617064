#include "kestrix/host/data_models/data_likeness.h"

#include <algorithm>

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationView;
using Storage = DataType::Storage;

// Next to types that are stored, the others mirror them or serve them.
constexpr double kBesideStored = 0.35;
constexpr double kExchangedBesideStored = 0.6;
constexpr double kOfEverywhere = 0.3;
constexpr double kContract = 0.15;
constexpr double kEnumeration = 0.3;
// A framework's word counts for more than the shape: fields may be made by the framework.
constexpr double kLeastOfKnown = 0.5;
// Of fewer namers, how many only make one tells nothing.
constexpr std::uint32_t kFewNamers = 3;
// A longer method weighs against so many fields.
constexpr double kFieldsPerWorker = 2;
constexpr double kFieldsPerAccessor = 0.5;

bool is_contract(DeclarationKind kind) {
  return kind == DeclarationKind::kInterface || kind == DeclarationKind::kProtocol;
}

double likeness_by_shape(const DataType& type, const DeclarationView& row) {
  if (row.kind == DeclarationKind::kEnum) return kEnumeration;
  if (is_contract(row.kind) && type.fields == 0) {
    return std::max(kContract, static_cast<double>(type.getters) / (row.methods + 1.0));
  }
  const bool shaped = is_type(row.kind) && row.kind != DeclarationKind::kAlias &&
                      row.kind != DeclarationKind::kTrait;
  if (!shaped || (type.fields == 0 && row.kind != DeclarationKind::kRecord)) return 0;
  const double held = type.fields + kFieldsPerAccessor * type.accessors;
  return held / (held + kFieldsPerWorker * type.workers + 1);
}

}  // namespace

double likeness_of(const DataType& type, const DeclarationView& row, bool beside_stored) {
  if (type.is_error) return 0;
  const double shape = likeness_by_shape(type, row);
  if (type.storage == Storage::kStored) return 1 + std::max(shape, kLeastOfKnown);
  const bool exchanged = type.storage == Storage::kExchanged;
  double likeness = exchanged ? std::max(shape, kLeastOfKnown) : shape;
  if (beside_stored) likeness *= exchanged ? kExchangedBesideStored : kBesideStored;
  // What those who name it only make is what they hand over: options, arguments.
  if (type.namers >= kFewNamers) likeness *= (type.users + 1.0) / (type.namers + 1.0);
  return type.is_everywhere ? likeness * kOfEverywhere : likeness;
}

}  // namespace kestrix
