#include "kestrix/host/flows/dispatch.h"

#include <algorithm>

#include "kestrix/host/flows/dispatch_hops.h"
#include "kestrix/host/flows/dispatch_hubs.h"
#include "kestrix/host/flows/dispatch_roots.h"
#include "kestrix/host/flows/starts.h"

namespace kestrix {
namespace {

bool found_by_framework(const FlowEvidence& evidence, const DispatchRoots& roots) {
  const auto known = std::ranges::count_if(
      roots.files(), [&](index::FileId root) { return evidence.handlers.contains(root); });
  return static_cast<std::size_t>(known) * 2 >= roots.size();
}

}  // namespace

ScoreSheet dispatch_sheet(const FlowEvidence& evidence, std::span<const index::FileId> roots) {
  const CodeEvidence& code = evidence.code;
  ScoreSheet sheet(code);
  if (roots.empty()) return sheet;
  const DispatchRoots own(code, roots);
  const auto hubs = add_hubs(sheet, code, evidence.graph, own);
  const auto holders = add_bases(sheet, code, own, evidence.errors);
  add_hops(sheet, code, evidence.graph, own, hubs, holders);
  add_tables(sheet, code, evidence.tables, own.files());
  if (found_by_framework(evidence, own) || sheet.ranked().empty()) {
    add_starts(sheet, code, evidence.graph, own.files(), evidence.handlers, hubs.empty());
  }
  return sheet;
}

}  // namespace kestrix
