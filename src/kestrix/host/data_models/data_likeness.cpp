#include "kestrix/host/data_models/data_likeness.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationView;
using Storage = DataType::Storage;

// Next to types that are stored, the others mirror them or serve them, unless they are as central.
constexpr double kBesideStored = 0.35;
constexpr double kExchangedBesideStored = 0.6;
constexpr double kOfEverywhere = 0.45;
constexpr double kContract = 0.15;
// An enumeration, or a name for another type.
constexpr double kNameOfValue = 0.3;
// A framework's word counts for more than the shape: fields may be made by the framework.
constexpr double kLeastOfKnown = 0.5;
// Of fewer namers, how many only make one tells nothing.
constexpr std::uint32_t kFewNamers = 3;
// A longer method weighs against so many fields.
constexpr double kFieldsPerWorker = 0.5;
constexpr double kFieldsPerAccessor = 0.5;

// What data implements is nearly as much data.
constexpr double kOfImplementers = 0.9;
constexpr std::size_t kBestImplementers = 3;
// More implementers than that and than methods, and they are kinds of behaviour.
constexpr double kFreeMethods = 2;

}  // namespace

bool is_contract(const DataType& type, const DeclarationView& row) {
  const bool contract =
      row.kind == DeclarationKind::kInterface || row.kind == DeclarationKind::kProtocol;
  return contract && type.fields == 0;
}

double likeness_by_shape(const DataType& type, const DeclarationView& row) {
  if (is_contract(type, row)) {
    return std::max(kContract, static_cast<double>(type.getters) / (row.methods + 1.0));
  }
  const bool alias = row.kind == DeclarationKind::kAlias && type.fields == 0;
  if (row.kind == DeclarationKind::kEnum || alias) return kNameOfValue;
  const bool shaped = is_type(row.kind) && row.kind != DeclarationKind::kTrait;
  if (!shaped || (type.fields == 0 && row.kind != DeclarationKind::kRecord)) return 0;
  const double held = type.fields + kFieldsPerAccessor * type.accessors;
  return held / (held + kFieldsPerWorker * type.workers + 1);
}

double likeness_of_contract(const DeclarationView& row, std::vector<double> implementers) {
  const auto data = std::ranges::count_if(
      implementers, [](double likeness) { return likeness >= kDataLikeness; });
  if (data == 0 || 2 * static_cast<std::size_t>(data) < implementers.size()) return 0;
  const double count = static_cast<double>(implementers.size());
  std::ranges::sort(implementers, std::ranges::greater());
  if (implementers.size() > kBestImplementers) implementers.resize(kBestImplementers);
  const double mean = std::reduce(implementers.begin(), implementers.end()) /
                      static_cast<double>(implementers.size());
  return kOfImplementers * mean * std::min(1.0, (row.methods + kFreeMethods) / count);
}

double likeness_of(const DataType& type, double shape, const StoredTypes& stored) {
  if (type.is_error) return 0;
  if (type.storage == Storage::kStored) return 1 + std::max(shape, kLeastOfKnown);
  const bool exchanged = type.storage == Storage::kExchanged;
  double likeness = exchanged ? std::max(shape, kLeastOfKnown) : shape;
  if (stored.any) {
    const double least = exchanged ? kExchangedBesideStored : kBesideStored;
    const double as_central = stored.users > 0 ? type.users / stored.users : 0;
    likeness *= std::clamp(as_central, least, 1.0);
  }
  // What those who name it only make is what they hand over: options, arguments.
  if (type.namers >= kFewNamers) likeness *= (type.users + 1.0) / (type.namers + 1.0);
  return type.is_everywhere ? likeness * kOfEverywhere : likeness;
}

}  // namespace kestrix
