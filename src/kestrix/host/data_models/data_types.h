#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// A type of the product, or a value that describes one, with what it holds and does and who names
/// it. Only what stands at the top of its file; what stands within counts for it.
struct DataType {
  enum class Storage : std::uint8_t { kNone, kExchanged, kStored };

  index::DeclarationRef at;
  Storage storage = Storage::kNone;  ///< by its framework, through any number of own bases
  bool is_error = false;
  bool is_everywhere = false;  ///< half of the product's folders hand it around
  std::uint32_t fields = 0;
  std::uint32_t accessors = 0;            ///< methods of a few lines
  std::uint32_t workers = 0;              ///< longer methods
  std::uint32_t getters = 0;              ///< methods without a body that are called like one
  std::uint32_t namers = 0;               ///< product files other than its own that name it
  std::uint32_t users = 0;                ///< those of them that do more with it than make one
  std::uint32_t folders = 0;              ///< of the namers, but its own
  std::uint32_t makers = 0;               ///< tests that make one
  std::vector<std::uint32_t> holders{};   ///< types that have a field of it; places in the list
  std::vector<std::uint32_t> subtypes{};  ///< ascending, as the holders
  double likeness = 0;                    ///< how much it is data: 0 not at all, from 1 on stored
};

/// The types of the product. Linear in declarations and references.
std::vector<DataType> data_types(const CodeEvidence& evidence);

/// From so much likeness on a type counts as data.
inline constexpr double kDataLikeness = 0.4;

}  // namespace kestrix
