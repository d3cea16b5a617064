#include "kestrix/host/flows/families.h"

#include <algorithm>
#include <iterator>

namespace kestrix {
namespace {

using index::FileId;

// Three files that one file names and nobody else.
constexpr double kLeastScore = 2.0;
// What falls this far behind the best of its sort is a part of something.
constexpr double kLeastOfBest = 0.25;

bool overlap(const Family& a, const Family& b) {
  std::vector<FileId> both;
  std::ranges::set_intersection(a.files, b.files, std::back_inserter(both));
  return both.size() * 2 > std::min(a.files.size(), b.files.size());
}

// Whether most files of a family name files of others, or are named by them: it is what leads to
// those, or what they make use of.
bool is_next_to(const NamingGraph& graph, const Family& family, const std::vector<Family>& others) {
  const auto is_of_another = [&](FileId file) {
    return std::ranges::any_of(others, [file](const Family& other) {
      return file != other.hub && std::ranges::binary_search(other.files, file);
    });
  };
  std::size_t naming = 0;
  std::size_t named = 0;
  for (const FileId file : family.files) {
    const bool names = std::ranges::any_of(
        graph.from(file), [&](const Naming& to) { return to.names && is_of_another(to.to); });
    const bool is_named = std::ranges::any_of(
        graph.to(file), [&](const Naming& by) { return by.names && is_of_another(by.from); });
    naming += names ? 1U : 0U;
    named += is_named ? 1U : 0U;
  }
  return std::max(naming, named) * 2 > family.files.size();
}

void best_first(std::vector<Family>& families) {
  std::ranges::sort(families, [](const Family& a, const Family& b) {
    return a.score != b.score ? a.score > b.score : a.glob < b.glob;
  });
}

void take(std::vector<Family> found, const NamingGraph& graph, double least,
          std::vector<Family>& best) {
  for (Family& family : found) {
    if (family.score < least) break;
    const auto overlaps = [&](const Family& other) { return overlap(family, other); };
    if (std::ranges::any_of(best, overlaps)) continue;
    if (family.key != 0 && is_next_to(graph, family, best)) continue;
    best.push_back(std::move(family));
  }
}

}  // namespace

std::vector<Family> families(const FlowEvidence& evidence) {
  const PathPatterns patterns(evidence.code);
  std::vector<Family> best;
  std::vector<Family> handlers = handler_families(evidence, patterns);
  std::vector<Family> others = hub_families(evidence, patterns);
  std::ranges::move(type_families(evidence, patterns), std::back_inserter(others));
  best_first(handlers);
  best_first(others);
  const double best_handlers = handlers.empty() ? 0 : handlers.front().score / kHandlerWeight;
  const double best_other = others.empty() ? 0 : others.front().score;
  take(std::move(handlers), evidence.graph, 0, best);
  take(std::move(others), evidence.graph,
       std::max(kLeastScore, kLeastOfBest * std::max(best_handlers, best_other)), best);
  best_first(best);
  return best;
}

}  // namespace kestrix
