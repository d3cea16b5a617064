#include "kestrix/host/extending/extension_signals.h"

#include <algorithm>

#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr double kSideFactor = 0.4;

// A product is extended in the language that it is written in; what others hold beside it is a
// part of its surroundings.
void scale_sides(const CodeEvidence& evidence, ScoreSheet& sheet) {
  const auto files = evidence.index().files();
  std::map<const index::FrameworkName*, std::size_t> counts;  // by table: of related languages
  const auto group_of = [&](FileId file) {
    return index::framework_names(files[file].language).data();
  };
  for (FileId file = 0; file < files.size(); ++file) {
    if (evidence.is_product(file)) ++counts[group_of(file)];
  }
  counts.erase(nullptr);
  std::size_t most = 0;
  for (const auto& [group, count] : counts) most = std::max(most, count);
  for (const auto& scored : sheet.ranked()) {
    if (counts[group_of(scored.file)] * 2 < most) sheet.scale(scored.file, kSideFactor);
  }
}

}  // namespace

ScoreSheet extension_sheet(const CodeEvidence& evidence, std::span<const Contract> contracts) {
  ScoreSheet sheet(evidence);
  add_contract_signals(evidence, contracts, sheet);
  add_holder_signals(evidence, contracts, sheet);
  add_context_signals(evidence, contracts, sheet);
  add_registry_signals(evidence, sheet);
  add_store_signals(evidence, sheet);
  add_wiring_signals(evidence, sheet);
  scale_sides(evidence, sheet);
  return sheet;
}

}  // namespace kestrix
