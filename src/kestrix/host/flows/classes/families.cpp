#include "kestrix/host/flows/classes/families.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kestrix/host/flows/classes/family_parts.h"

namespace kestrix {
namespace {

using index::FileId;

// Three files that one file names and nobody else have 2.
constexpr double kLeastScore = 1.2;
// What falls this far behind the best of its sort is a part of something.
constexpr double kLeastOfBest = 0.2;
// Who comes in through a door gets to a part of the product behind it: to so many files, or to one
// in so many of a small product.
constexpr std::size_t kReach = 8;
constexpr std::size_t kReachShare = 20;
constexpr double kLeastReachFactor = 0.5;

bool overlap(const Family& a, const Family& b) {
  std::vector<FileId> both;
  std::ranges::set_intersection(a.files, b.files, std::back_inserter(both));
  return both.size() * 2 > std::min(a.files.size(), b.files.size());
}

void best_first(std::vector<Family>& families) {
  std::ranges::sort(families, [](const Family& a, const Family& b) {
    return a.score != b.score ? a.score > b.score : a.glob < b.glob;
  });
}

// By how many files of the product most of them name.
void weigh_by_reach(const FlowEvidence& evidence, Family& family) {
  std::vector<std::size_t> reach;
  for (const FileId file : family.files) {
    reach.push_back(static_cast<std::size_t>(std::ranges::count_if(
        evidence.graph.from(file),
        [&](const Naming& naming) { return evidence.code.is_product(naming.to); })));
  }
  const auto middle = reach.begin() + static_cast<std::ptrdiff_t>(reach.size() / 2);
  std::ranges::nth_element(reach, middle);
  const std::size_t enough =
      std::clamp<std::size_t>(evidence.code.product_count() / kReachShare, 1, kReach);
  const double share = std::min(1.0, static_cast<double>(*middle) / static_cast<double>(enough));
  family.score *= kLeastReachFactor + (1 - kLeastReachFactor) * share;
}

std::vector<Family> in_parts(const FlowEvidence& evidence, const PathPatterns& patterns,
                             std::vector<Family> families) {
  std::vector<Family> parts;
  for (Family& family : families) {
    std::ranges::move(parts_of(evidence, patterns, std::move(family)), std::back_inserter(parts));
  }
  for (Family& part : parts) weigh_by_reach(evidence, part);
  return parts;
}

class Chooser {
 public:
  Chooser(const FlowEvidence& evidence, const PathPatterns& patterns)
      : patterns_(patterns), taken_(evidence.code.index().files().size()) {}

  void take(std::vector<Family> found, double least) {
    for (Family& family : found) {
      if (family.score < least) break;
      const auto overlaps = [&](const Family& other) { return overlap(family, other); };
      if (std::ranges::any_of(best_, overlaps) && !leave_rest(family)) continue;
      if (family.score < least) continue;
      for (const FileId file : family.files) taken_[file] = true;
      best_.push_back(std::move(family));
    }
  }

  std::vector<Family> best() {
    best_first(best_);
    return std::move(best_);
  }

 private:
  // Without the files of better families it may still be one.
  bool leave_rest(Family& family) const {
    if (family.key != 0) return false;  // a hub named all of it, not the rest
    const std::size_t all = family.files.size();
    std::erase_if(family.files, [this](FileId file) { return taken_[file]; });
    const std::size_t rest = family.files.size();
    if (rest < kLeastFamily || rest * 2 <= all) return false;
    family.score *=
        std::log2(1.0 + static_cast<double>(rest)) / std::log2(1.0 + static_cast<double>(all));
    family.sign += fmt::format("; {} of them shown elsewhere", all - rest);
    family.glob = patterns_.glob_of(family.files);
    return true;
  }

  const PathPatterns& patterns_;
  std::vector<bool> taken_;  // by file: whether a family of the best has it
  std::vector<Family> best_;
};

}  // namespace

std::vector<Family> families(const FlowEvidence& evidence) {
  const PathPatterns patterns(evidence.code);
  std::vector<Family> handlers = handler_families(evidence, patterns);
  std::vector<Family> others = hub_families(evidence, patterns);
  std::ranges::move(type_families(evidence, patterns), std::back_inserter(others));
  handlers = in_parts(evidence, patterns, std::move(handlers));
  others = in_parts(evidence, patterns, std::move(others));
  best_first(handlers);
  best_first(others);
  const double best_handlers = handlers.empty() ? 0 : handlers.front().score / kHandlerWeight;
  const double best_other = others.empty() ? 0 : others.front().score;
  Chooser chooser(evidence, patterns);
  chooser.take(std::move(handlers), 0);
  const auto loose =
      std::ranges::stable_partition(others, [](const Family& family) { return !family.loose; });
  std::vector<Family> last(std::make_move_iterator(loose.begin()),
                           std::make_move_iterator(loose.end()));
  others.erase(loose.begin(), loose.end());
  const double least = std::max(kLeastScore, kLeastOfBest * std::max(best_handlers, best_other));
  chooser.take(std::move(others), least);
  chooser.take(std::move(last), least);
  return chooser.best();
}

}  // namespace kestrix
