#include "kestrix/host/flows/classes/hub_candidates.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <unordered_map>

#include "kestrix/host/flows/classes/families.h"
#include "kestrix/host/flows/classes/family_signs.h"

namespace kestrix {
namespace {

using index::FileId;
using Key = PathPatterns::Key;

// What more files name serves them; nobody but a dispatcher names a door.
constexpr std::size_t kMostNamers = 6;
constexpr double kLeastCover = 0.6;
constexpr std::size_t kMostCandidates = 400;

struct Claim {
  Key key;
  FileId hub;
  std::uint32_t count;
};

class Finder {
 public:
  Finder(const CodeEvidence& code, const NamingGraph& graph, const PathPatterns& patterns)
      : code_(code), graph_(graph), patterns_(patterns) {}

  std::vector<HubCandidate> find() {
    const auto files = code_.index().files();
    quiet_.resize(files.size());
    for (FileId file = 0; file < files.size(); ++file) quiet_[file] = is_quiet(file);
    for (FileId file = 0; file < files.size(); ++file) {
      if (code_.is_product(file)) claim(file);
    }
    return candidates();
  }

 private:
  bool is_quiet(FileId file) const {
    if (is_header(code_.path(file))) return false;
    std::size_t namers = 0;
    for (const Naming& naming : graph_.to(file)) namers += leads(code_, naming) ? 1U : 0U;
    return namers > 0 && namers <= kMostNamers;
  }

  void claim(FileId hub) {
    std::vector<Key> keys;
    for (const Naming& naming : graph_.from(hub)) {
      if (!leads(code_, naming) || !quiet_[naming.to]) continue;
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

  std::vector<HubCandidate> candidates() {
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
    std::vector<HubCandidate> found;
    for (std::size_t at = 0, next = 0; at < claims_.size(); at = next) {
      HubCandidate candidate{claims_[at].key, {}, 0};
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
    std::ranges::sort(found, [](const HubCandidate& a, const HubCandidate& b) {
      return a.promise != b.promise ? a.promise > b.promise : a.key < b.key;
    });
    if (found.size() > kMostCandidates) found.resize(kMostCandidates);
    return found;
  }

  const CodeEvidence& code_;
  const NamingGraph& graph_;
  const PathPatterns& patterns_;
  std::vector<bool> quiet_;
  std::vector<Claim> claims_;
};

}  // namespace

std::vector<HubCandidate> hub_candidates(const CodeEvidence& code, const NamingGraph& graph,
                                         const PathPatterns& patterns) {
  return Finder(code, graph, patterns).find();
}

}  // namespace kestrix
