#include "kestrix/index/left_out.h"

#include <utility>

#include "kestrix/files/skip_counts.h"

namespace kestrix::index {

std::vector<std::string_view> reasons_of(const Traits& traits) {
  constexpr std::pair<Trait, std::string_view> kReasons[] = {
      {Trait::kBinary, skipped::kBinary},     {Trait::kUnreadable, skipped::kUnreadable},
      {Trait::kMinified, skipped::kMinified}, {Trait::kGaveUp, skipped::kParseBudget},
      {Trait::kCrowded, skipped::kCrowded},   {Trait::kEntangled, skipped::kEntangled}};
  std::vector<std::string_view> reasons;
  for (const auto& [trait, reason] : kReasons) {
    if (traits.has(trait)) reasons.push_back(reason);
  }
  if (traits.has(Trait::kLarge) && traits.is_text()) reasons.push_back(skipped::kLarge);
  return reasons;
}

}  // namespace kestrix::index
