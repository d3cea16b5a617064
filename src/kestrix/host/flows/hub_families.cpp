#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <unordered_map>

#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/flows/families.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/sorting.h"

namespace kestrix {
namespace {

using index::FileId;
using Key = PathPatterns::Key;

// What more files name serves them; nobody but a dispatcher names a door.
constexpr std::size_t kMostNamers = 6;
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
constexpr double kLeastAlike = 0.6;
constexpr double kAlikeFactor = 1.5;
constexpr std::size_t kMostCandidates = 400;

// It declares; what is called lies elsewhere.
bool is_header(std::string_view path) {
  static constexpr std::array<std::string_view, 4> kEndings{".h", ".hh", ".hpp", ".hxx"};
  return std::ranges::any_of(kEndings, [path](auto ending) { return path.ends_with(ending); });
}

struct Claim {
  Key key;
  FileId hub;
  std::uint32_t count;
};

struct Candidate {
  Key key;
  std::vector<FileId> hubs;
  double promise;
};

class HubFamilies {
 public:
  HubFamilies(const FlowEvidence& evidence, const PathPatterns& patterns)
      : code_(evidence.code), graph_(evidence.graph), patterns_(patterns) {}

  std::vector<Family> find() {
    const auto files = code_.index().files();
    errors_.resize(files.size());
    for (const auto type : error_types(code_)) errors_[type.file] = true;
    quiet_.resize(files.size());
    for (FileId file = 0; file < files.size(); ++file) quiet_[file] = is_quiet(file);
    for (FileId file = 0; file < files.size(); ++file) {
      if (code_.is_product(file)) claim(file);
    }
    std::vector<Family> families;
    for (const Candidate& candidate : candidates()) {
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
      if (hubs.size() >= kLeastFamily) families.push_back(std::move(joined));
    }
  }

  bool leads(const Naming& naming) const {
    return naming.names && !naming.derives && code_.is_product(naming.from) &&
           code_.is_product(naming.to);
  }

  bool is_quiet(FileId file) const {
    if (is_header(code_.path(file))) return false;
    std::size_t namers = 0;
    for (const Naming& naming : graph_.to(file)) namers += leads(naming) ? 1U : 0U;
    return namers > 0 && namers <= kMostNamers;
  }

  void claim(FileId hub) {
    std::vector<Key> keys;
    for (const Naming& naming : graph_.from(hub)) {
      if (!leads(naming) || !quiet_[naming.to]) continue;
      patterns_.for_each_key(naming.to, [&](Key key) { keys.push_back(key); });
    }
    std::ranges::sort(keys);
    std::map<Key, std::uint32_t> runs;
    for (std::size_t at = 0, next = 0; at < keys.size(); at = next) {
      while (next < keys.size() && keys[next] == keys[at]) ++next;
      if (next - at >= kLeastFamily) runs.emplace(keys[at], static_cast<std::uint32_t>(next - at));
    }
    std::set<Key> wider;  // a folder of which only one folder below it is named
    for (const auto& [key, count] : runs) {
      const auto above = runs.find(patterns_.above(key));
      if (above != runs.end() && above->second == count) wider.insert(above->first);
    }
    for (const auto& [key, count] : runs) {
      if (!wider.contains(key)) claims_.push_back({key, hub, count});
    }
  }

  std::vector<Candidate> candidates() {
    std::ranges::sort(claims_, [](const Claim& a, const Claim& b) {
      return a.key != b.key ? a.key < b.key : a.hub < b.hub;
    });
    std::unordered_map<Key, std::uint32_t> sizes;
    for (const Claim& claim : claims_) sizes.emplace(claim.key, 0);
    for (FileId file = 0; file < code_.index().files().size(); ++file) {
      if (!code_.is_product(file)) continue;
      patterns_.for_each_key(file, [&](Key key) {
        const auto found = sizes.find(key);
        if (found != sizes.end()) ++found->second;
      });
    }
    std::vector<Candidate> found;
    for (std::size_t at = 0, next = 0; at < claims_.size(); at = next) {
      Candidate candidate{claims_[at].key, {}, 0};
      const std::uint32_t size = sizes.at(candidate.key);
      double cover = 0;
      for (; next < claims_.size() && claims_[next].key == candidate.key; ++next) {
        if (claims_[next].count * 4 < size) continue;
        candidate.hubs.push_back(claims_[next].hub);
        cover += static_cast<double>(claims_[next].count) / size;
      }
      candidate.promise = std::min(cover, 1.0) * std::log2(1.0 + size);
      if (cover >= kLeastCover) found.push_back(std::move(candidate));
    }
    std::ranges::sort(found, [](const Candidate& a, const Candidate& b) {
      return a.promise != b.promise ? a.promise > b.promise : a.key < b.key;
    });
    if (found.size() > kMostCandidates) found.resize(kMostCandidates);
    return found;
  }

  Family examine(const Candidate& candidate) const {
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
    if (are_alike(family.files)) {
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

  void count(FileId file, const Candidate& candidate, const std::vector<FileId>& members,
             Tally& tally) const {
    const auto is_member = [&](FileId other) { return std::ranges::binary_search(members, other); };
    std::size_t others = 0;
    bool named = false;
    bool used = false;
    for (const Naming& naming : graph_.to(file)) {
      if (!leads(naming) || is_member(naming.from)) continue;
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
    const DataSignals& data = code_.index().files()[file].data;
    const bool defines = data.entities > 0 || data.tables > 0 || data.schema_file;
    tally.data += defines || errors_[file] ? 1U : 0U;
    tally.held += is_field_elsewhere(file, members) || has_own_interface(file, members) ? 1U : 0U;
  }

  // They derive from, bear, make or call one thing of the product that few others do.
  bool are_alike(const std::vector<FileId>& members) const {
    static constexpr RoleSet kSigns{index::Role::kExtends, index::Role::kImplements,
                                    index::Role::kAnnotates, index::Role::kConstructs,
                                    index::Role::kCalls};
    std::map<index::DeclarationRef, std::size_t> signs;
    for (const FileId file : members) {
      std::set<index::DeclarationRef> own;
      for (const auto& to : code_.index().references_from(file)) {
        if (to.declaration == 0 || to.target == file || !kSigns.has(to.role)) continue;
        own.insert({to.target, to.declaration - 1});
      }
      for (const auto sign : own) ++signs[sign];
    }
    return std::ranges::any_of(signs, [&](const auto& entry) {
      const auto count = static_cast<double>(entry.second);
      return count >= kLeastAlike * static_cast<double>(members.size()) &&
             count >=
                 kLeastAlike * static_cast<double>(code_.files_naming(entry.first, kSigns).size());
    });
  }

  // Its hub names more of the same folder: what they have in common is chance.
  bool is_slice(const Family& family) const {
    std::size_t beside = 0;
    std::size_t members = 0;
    for (const Naming& naming : graph_.from(family.hub)) {
      if (!leads(naming)) continue;
      if (std::ranges::binary_search(family.files, naming.to)) {
        ++members;
      } else if (patterns_.is_beside(family.key, naming.to)) {
        ++beside;
      }
    }
    return beside > members;
  }

  // Another type has it for a field: it serves that type.
  bool is_field_elsewhere(FileId file, const std::vector<FileId>& members) const {
    for (const std::uint32_t at : code_.references_to(file)) {
      const auto& to = code_.reference(at);
      if (to.role != index::Role::kType || to.within == 0 || !code_.is_product(to.source)) continue;
      if (std::ranges::binary_search(members, to.source)) continue;
      const auto kind = code_[{to.source, to.within - 1}].kind;
      if (index::is_type(kind) || kind == index::DeclarationKind::kField) return true;
    }
    return false;
  }

  // It implements a type of the product that nothing else implements: others call it through that.
  bool has_own_interface(FileId file, const std::vector<FileId>& members) const {
    for (const auto& to : code_.index().references_from(file)) {
      if (!kSubtyping.has(to.role) || to.declaration == 0 || to.target == file) continue;
      if (std::ranges::binary_search(members, to.target)) continue;
      const index::DeclarationRef base{to.target, to.declaration - 1};
      if (code_.is_product(base.file) && code_.subtypes(base).size() == 1) return true;
    }
    return false;
  }

  const CodeEvidence& code_;
  const NamingGraph& graph_;
  const PathPatterns& patterns_;
  std::vector<bool> errors_;  // by file: whether it defines one
  std::vector<bool> quiet_;
  std::vector<Claim> claims_;
};

}  // namespace

std::vector<Family> hub_families(const FlowEvidence& evidence, const PathPatterns& patterns) {
  return HubFamilies(evidence, patterns).find();
}

}  // namespace kestrix
