#include "kestrix/host/flows/families.h"

#include <algorithm>
#include <iterator>

namespace kestrix {
namespace {

using index::FileId;

// Three files that one file names and nobody else.
constexpr double kLeastScore = 2.0;
// What falls this far behind the best of its sort is a part of something.
constexpr double kLeastOfBest = 0.4;

bool overlap(const Family& a, const Family& b) {
  std::vector<FileId> both;
  std::ranges::set_intersection(a.files, b.files, std::back_inserter(both));
  return both.size() * 2 > std::min(a.files.size(), b.files.size());
}

// Whether most files of a family name files of another, or are named by them: it is what leads to
// that one, or what that one makes use of.
bool is_next_to(const NamingGraph& graph, const Family& family, const Family& other) {
  const auto is_of = [&other](FileId file) {
    return file != other.hub && std::ranges::binary_search(other.files, file);
  };
  std::size_t naming = 0;
  std::size_t named = 0;
  for (const FileId file : family.files) {
    naming += std::ranges::any_of(graph.from(file),
                                  [&](const Naming& to) { return to.names && is_of(to.to); })
                  ? 1U
                  : 0U;
    named += std::ranges::any_of(graph.to(file),
                                 [&](const Naming& by) { return by.names && is_of(by.from); })
                 ? 1U
                 : 0U;
  }
  return std::max(naming, named) * 2 > family.files.size();
}

void take_best(std::vector<Family> found, const NamingGraph& graph, double least, double of_best,
               std::vector<Family>& best) {
  std::ranges::sort(found, [](const Family& a, const Family& b) {
    return a.score != b.score ? a.score > b.score : a.glob < b.glob;
  });
  for (Family& family : found) {
    if (family.score < least || family.score < of_best * found.front().score) break;
    const auto shares = [&](const Family& other) {
      return overlap(family, other) || (family.key != 0 && is_next_to(graph, family, other));
    };
    if (std::ranges::none_of(best, shares)) best.push_back(family);
  }
}

}  // namespace

std::vector<Family> families(const FlowEvidence& evidence) {
  const PathPatterns patterns(evidence.code);
  std::vector<Family> best;
  take_best(handler_families(evidence, patterns), evidence.graph, 0, 0, best);
  take_best(hub_families(evidence, patterns), evidence.graph, kLeastScore, kLeastOfBest, best);
  std::ranges::sort(best, [](const Family& a, const Family& b) {
    return a.score != b.score ? a.score > b.score : a.glob < b.glob;
  });
  return best;
}

}  // namespace kestrix
