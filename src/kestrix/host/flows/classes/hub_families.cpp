#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/flows/classes/families.h"
#include "kestrix/host/flows/classes/family_signs.h"
#include "kestrix/host/flows/classes/hub_candidates.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/sorting.h"

namespace kestrix {
namespace {

using index::FileId;
using Key = PathPatterns::Key;

constexpr std::size_t kOtherNamers = 1;
constexpr double kLeastCover = 0.6;
constexpr double kLeastQuiet = 0.6;
constexpr double kLeastReach = 0.5;
constexpr std::size_t kLeastReached = 1;
// What several files name all of is of use to them.
constexpr double kHubShare = 0.5;
constexpr std::ptrdiff_t kMostHubs = 2;
constexpr double kMostData = 0.3;
// Services are registered in one place, too, but others hold and call them.
constexpr double kMostHeld = 0.5;
constexpr double kServiceFactor = 0.3;
// A file that only imports them may hand them on to whoever wants one.
constexpr double kMostHanded = 0.5;
constexpr double kIndexFactor = 0.5;
// What lies in one folder but for a few is that folder's family.
constexpr double kLooseFactor = 0.6;
constexpr double kAlikeFactor = 1.5;

class HubFamilies {
 public:
  HubFamilies(const FlowEvidence& evidence, const PathPatterns& patterns)
      : code_(evidence.code),
        graph_(evidence.graph),
        all_errors_(evidence.errors),
        patterns_(patterns) {}

  std::vector<Family> find() {
    const auto files = code_.index().files();
    errors_.resize(files.size());
    for (const auto type : all_errors_) errors_[type.file] = true;
    std::vector<Family> families;
    for (const HubCandidate& candidate : hub_candidates(code_, graph_, patterns_)) {
      Family family = examine(candidate);
      if (family.score > 0) families.push_back(std::move(family));
    }
    join_siblings(families);
    return families;
  }

 private:
  // Where each of several folders has a hub of its own, their families are one.
  void join_siblings(std::vector<Family>& families) const {
    std::map<Key, std::vector<std::size_t>> below;
    for (std::size_t at = 0; at < families.size(); ++at) {
      below[patterns_.above(families[at].key)].push_back(at);
    }
    for (const auto& [key, parts] : below) {
      if (key == 0 || parts.size() < kLeastFamily) continue;
      Family joined{.glob = patterns_.glob(key, true), .key = key};
      double quality = 0;
      std::set<FileId> hubs;
      for (const std::size_t at : parts) {
        const Family& part = families[at];
        joined.files.insert(joined.files.end(), part.files.begin(), part.files.end());
        joined.named += part.named;
        hubs.insert(part.hub);
        quality += part.score / std::log2(1.0 + static_cast<double>(part.files.size()));
      }
      sort_distinct(joined.files);
      joined.hub = *hubs.begin();
      joined.sign = fmt::format("{} like {} name {} of {}", counted(hubs.size(), "file", "files"),
                                code_.path(joined.hub), joined.named,
                                counted(joined.files.size(), "file", "files"));
      joined.score = std::log2(1.0 + static_cast<double>(joined.files.size())) * quality /
                     static_cast<double>(parts.size());
      // Modules list their parts, too.
      if (!have_a_sign(code_, joined.files)) joined.score *= kIndexFactor;
      if (hubs.size() >= kLeastFamily) families.push_back(std::move(joined));
    }
  }

  Family examine(const HubCandidate& candidate) const {
    Family family{.key = candidate.key};
    const auto [first, last] = patterns_.range(candidate.key);
    bool deep = false;
    for (FileId file = first; file < last; ++file) {
      if (!code_.is_product(file) || !patterns_.matches(file, candidate.key)) continue;
      if (std::ranges::find(candidate.hubs, file) != candidate.hubs.end()) continue;
      if (graph_.to(file).empty() && graph_.from(file).empty()) continue;  // takes part in nothing
      family.files.push_back(file);
      deep |= patterns_.is_deep(candidate.key, file);
    }
    if (family.files.size() < kLeastFamily) return family;
    Tally tally;
    for (const FileId file : family.files) count(file, candidate, family.files, tally);
    const auto share = [&](std::size_t part) {
      return static_cast<double>(part) / static_cast<double>(family.files.size());
    };
    if (share(tally.named) < kLeastCover || share(tally.quiet) < kLeastQuiet ||
        share(tally.reaching) < kLeastReach || share(tally.data) > kMostData ||
        std::ranges::count_if(tally.by_hub, [&](const auto& entry) {
          return share(entry.second.second) >= kHubShare;
        }) > kMostHubs) {
      return family;
    }
    family.glob = patterns_.glob(candidate.key, deep);
    family.hub = std::ranges::max_element(tally.by_hub, [](const auto& a, const auto& b) {
                   return a.second < b.second;
                 })->first;
    family.named = tally.named;
    family.sign =
        fmt::format("{} names {} of {}", code_.path(family.hub), tally.by_hub[family.hub].first,
                    counted(family.files.size(), "file", "files"));
    family.score = std::log2(1.0 + static_cast<double>(family.files.size())) * share(tally.named) *
                   share(tally.quiet) * share(tally.reaching);
    if (share(tally.held) > kMostHeld) family.score *= kServiceFactor;
    if (have_a_sign(code_, family.files)) {
      family.score *= kAlikeFactor;
    } else if (share(tally.handed_on) > kMostHanded) {
      family.score *= kIndexFactor;
    }
    if (is_slice(family)) family.score = 0;
    if (deep && lie_in_one_folder(family.files)) family.score *= kLooseFactor;
    return family;
  }

  // Whether one folder holds so many of them that its own pattern says it better.
  bool lie_in_one_folder(const std::vector<FileId>& files) const {
    std::map<std::string_view, std::size_t> folders;
    std::size_t most = 0;
    for (const FileId file : files) {
      most = std::max(most, ++folders[index::folder_of(code_.path(file))]);
    }
    return folders.size() > 1 && 4 * most >= 3 * files.size();
  }

  // What is seen of the files of one candidate.
  struct Tally {
    std::size_t named = 0;      // by a hub
    std::size_t quiet = 0;      // that hardly anybody else names
    std::size_t reaching = 0;   // that know the product
    std::size_t data = 0;       // that define data
    std::size_t held = 0;       // that others hold, or call through an interface of their own
    std::size_t handed_on = 0;  // that hubs import, and no more
    std::map<FileId, std::pair<std::size_t, std::size_t>> by_hub;  // named, of those used
  };

  void count(FileId file, const HubCandidate& candidate, const std::vector<FileId>& members,
             Tally& tally) const {
    const auto is_member = [&](FileId other) { return std::ranges::binary_search(members, other); };
    std::size_t others = 0;
    bool named = false;
    bool used = false;
    for (const Naming& naming : graph_.to(file)) {
      if (!leads(code_, naming) || is_member(naming.from)) continue;
      if (std::ranges::find(candidate.hubs, naming.from) == candidate.hubs.end()) {
        ++others;
      } else {
        named = true;
        used |= naming.used;
        auto& [by_hub, by_use] = tally.by_hub[naming.from];
        ++by_hub;
        by_use += naming.used ? 1U : 0U;
      }
    }
    std::size_t reach = 0;
    for (const Naming& naming : graph_.from(file)) {
      if (!is_member(naming.to) && code_.is_product(naming.to)) ++reach;
    }
    tally.named += named ? 1U : 0U;
    tally.handed_on += named && !used ? 1U : 0U;
    tally.quiet += others <= kOtherNamers ? 1U : 0U;
    tally.reaching += reach >= kLeastReached ? 1U : 0U;
    tally.data += defines_data(code_, file) || errors_[file] ? 1U : 0U;
    tally.held +=
        is_field_elsewhere(code_, file, members) || has_own_interface(code_, file, members) ? 1U
                                                                                            : 0U;
  }

  // Its hub names more of the same folder: what they have in common is chance.
  bool is_slice(const Family& family) const {
    std::size_t beside = 0;
    std::size_t members = 0;
    for (const Naming& naming : graph_.from(family.hub)) {
      if (!leads(code_, naming)) continue;
      if (std::ranges::binary_search(family.files, naming.to)) {
        ++members;
      } else if (patterns_.is_beside(family.key, naming.to)) {
        ++beside;
      }
    }
    return beside > members;
  }

  const CodeEvidence& code_;
  const NamingGraph& graph_;
  const std::set<index::DeclarationRef>& all_errors_;
  const PathPatterns& patterns_;
  std::vector<bool> errors_;  // by file: whether it defines one
};

}  // namespace

std::vector<Family> hub_families(const FlowEvidence& evidence, const PathPatterns& patterns) {
  return HubFamilies(evidence, patterns).find();
}

}  // namespace kestrix
