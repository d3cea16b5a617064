#include "kestrix/host/flows/dispatch/dispatch.h"

#include <algorithm>

#include "kestrix/host/flows/dispatch/dispatch_hops.h"
#include "kestrix/host/flows/dispatch/dispatch_hubs.h"
#include "kestrix/host/flows/dispatch/starts.h"

namespace kestrix {
namespace {

bool found_by_framework(const FlowEvidence& evidence, const DispatchRoots& roots) {
  const auto known = std::ranges::count_if(
      roots.files(), [&](index::FileId root) { return evidence.handlers.contains(root); });
  return static_cast<std::size_t>(known) * 2 >= roots.size();
}

}  // namespace

Dispatch dispatch_of(const FlowEvidence& evidence, std::span<const index::FileId> roots) {
  const CodeEvidence& code = evidence.code;
  Dispatch dispatch{code, evidence.graph, DispatchRoots(code, roots), ScoreSheet(code), {}, {}, {}};
  if (roots.empty()) return dispatch;
  add_hubs(dispatch);
  add_bases(dispatch, evidence.errors);
  add_hops(dispatch);
  if (dispatch.hubs.empty()) add_messages(dispatch);
  add_tables(dispatch, evidence.tables);
  if (found_by_framework(evidence, dispatch.roots) || dispatch.sheet.ranked().empty()) {
    add_starts(dispatch, evidence.handlers);
  }
  return dispatch;
}

}  // namespace kestrix
