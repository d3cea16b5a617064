#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "kestrix/host/entry_points.h"
#include "kestrix/host/flows/classes/families.h"
#include "kestrix/host/flows/flow_edges.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

// The reach of one dispatcher into the roots, as the rule counts it.
Reason reach_of(const WikiGenerator& generator, std::string_view path,
                const std::vector<std::string>& roots) {
  const auto& index = generator.indexed();
  Reason reason{"reaches_entry_points", {}, 0, {}};
  const auto file = index.find(path);
  if (!file) return reason;
  for (const auto& edge : index.edges_from(*file)) {
    const std::string_view target = index.files()[edge.target].path;
    if (directory_of(target) == directory_of(path)) continue;
    if (!std::ranges::binary_search(roots, target)) continue;
    ++reason.count;
    if (reason.at.size() < kMostPlaces) reason.at.push_back({std::string(target), 0, {}});
  }
  reason.text = fmt::format("reaches {} of {}", reason.count,
                            counted(roots.size(), "entry point", "entry points"));
  return reason;
}

// Below these a file has too little to do with the entry points.
constexpr double kLeastScore = 1.5;
constexpr double kLeastShare = 0.12;

// From the strongest on the sheet to those roots that they lead to: so the rule sees what leads to
// them by base types, strings, registration or the framework's start, too. Those that lead to fewer
// than the rule wants leave their place to others.
FlowEdgesScope::Edges edges_of(const WikiGenerator& generator, const Dispatch& dispatch) {
  FlowEdgesScope::Edges edges;
  const auto files = generator.indexed().files();
  const std::size_t third = (dispatch.roots.size() + DISPATCH_MIN_ROOTS - 1) / DISPATCH_MIN_ROOTS;
  std::size_t taken = 0;
  for (const auto& [points, file] : dispatch.sheet.ranked()) {
    if (taken == DISPATCH_FILES || points < kLeastScore) break;
    const std::string_view path = files[file].path;
    const auto reached = dispatch.reached.find(file);
    if (!generator.is_planned(path) || reached == dispatch.reached.end()) continue;
    const std::size_t before = edges.size();
    for (const index::FileId root : reached->second) {
      if (directory_of(files[root].path) == directory_of(path)) continue;
      edges.push_back({path, files[root].path, 1});
    }
    const bool enough = edges.size() - before >= std::max<std::size_t>(2, third);
    if (!enough) edges.resize(before);
    taken += enough ? 1U : 0U;
  }
  return edges;
}

FlowClass flow_of(const WikiGenerator& generator, const IndexEvidence& evidence,
                  const FlowEvidence& flows, EntryPointClass found) {
  FlowClass flow{std::move(found.name), std::move(found.sign), std::move(found.roots), {}, {}};
  std::vector<index::FileId> roots;
  for (const std::string& path : flow.roots) {
    if (const auto file = generator.indexed().find(path)) roots.push_back(*file);
  }
  const Dispatch dispatch = dispatch_of(flows, roots);
  const ScoreSheet& sheet = dispatch.sheet;
  const FlowEdgesScope::Edges edges = edges_of(generator, dispatch);
  const FlowEdgesScope scope(edges);
  for (std::string& path : generator._flow_dispatch(flow.roots)) {
    Pick pick{std::move(path), {}};
    Reason reach = reach_of(generator, pick.path, flow.roots);
    if (reach.count > 0) pick.reasons.push_back(std::move(reach));
    add_counted(pick.reasons, evidence.used_by(pick.path));
    flow.files.push_back(std::move(pick));
  }
  add_reasons(sheet, flows.code, flow.files);
  flow.further =
      sheet.further(flow.files, room_for_further(flow.files.size()), kLeastScore, kLeastShare);
  return flow;
}

std::vector<EntryPointClass> classes_that_show(const FlowEvidence& evidence) {
  std::vector<EntryPointClass> classes;
  for (Family& family : families(evidence)) {
    EntryPointClass shown{std::move(family.glob), {}, std::move(family.sign)};
    for (const index::FileId file : family.files)
      shown.roots.emplace_back(evidence.code.path(file));
    classes.push_back(std::move(shown));
  }
  return classes;
}

// The classes that settings name, in their order.
std::vector<EntryPointClass> named_classes(const WikiGenerator& generator) {
  std::vector<EntryPointClass> classes;
  if (generator.steering() == nullptr) return classes;
  const auto paths = generator.nameable_paths();
  for (const EntryPointSetting& named : generator.steering()->settings().entry_points) {
    EntryPointClass all{named.name, {}, fmt::format("named by {}", named.from)};
    for (const std::string& glob : named.globs) {
      std::ranges::move(entry_points_matching(glob, paths).roots, std::back_inserter(all.roots));
    }
    std::ranges::sort(all.roots);
    all.roots.erase(std::unique(all.roots.begin(), all.roots.end()), all.roots.end());
    classes.push_back(std::move(all));
  }
  return classes;
}

std::size_t most_classes(const WikiGenerator& generator) {
  const Steering* steering = generator.steering();
  return steering == nullptr
             ? MAX_ENTRY_POINT_CLASSES
             : steering->settings().limit("classes").value_or(MAX_ENTRY_POINT_CLASSES);
}

}  // namespace

FlowsAnswer flows_answer(const WikiGenerator& generator, std::span<const std::string> patterns) {
  std::vector<EntryPointClass> classes;
  FlowsAnswer answer;
  const FlowEvidence flows(generator);
  if (patterns.empty()) {
    classes = named_classes(generator);
    std::ranges::move(classes_that_show(flows), std::back_inserter(classes));
    answer.total = classes.size();
    classes.resize(std::min(classes.size(), most_classes(generator)));
  } else {
    const auto paths = generator.nameable_paths();
    for (const std::string& pattern : patterns) {
      classes.push_back(entry_points_matching(pattern, paths));
    }
    answer.total = classes.size();
  }
  const IndexEvidence evidence(generator.indexed());
  for (EntryPointClass& found : classes) {
    answer.classes.push_back(flow_of(generator, evidence, flows, std::move(found)));
  }
  answer.truncated = answer.total > answer.classes.size();
  if (answer.classes.empty()) {
    answer.nothing_found =
        "no three files alike that one file names and hardly any other does, and none that a "
        "framework calls by its base type, annotation or place";
  }
  return answer;
}

std::string flows_why_not(const WikiGenerator& generator, std::string_view path) {
  Reason farthest;
  std::string name;
  for (const EntryPointClass& found : classes_that_show(FlowEvidence(generator))) {
    if (std::ranges::binary_search(found.roots, path)) {
      return fmt::format("an entry point of the class {}, not what dispatches to it", found.name);
    }
    Reason reach = reach_of(generator, path, found.roots);
    if (reach.count <= farthest.count) continue;
    farthest = std::move(reach);
    name = found.name;
  }
  if (farthest.count == 0) return "reaches no entry point";
  return fmt::format("{} of the class {}; others reach more, or it is not among the classes shown",
                     farthest.text, name);
}

}  // namespace kestrix
