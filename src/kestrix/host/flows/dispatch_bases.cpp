#include <algorithm>

#include "kestrix/host/flows/dispatch_roots.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;

constexpr Signal kBase{"entry_point_base", 2.0, "declares what {} entry point extends",
                       "declares what {} entry points extend", "netbox, mockito"};
constexpr Signal kFarBase{"entry_point_base", 0.8, "declares what {} entry point comes from",
                          "declares what {} entry points come from", "netbox, lobsters"};
constexpr Signal kGroupBase{"entry_point_base", 1.5, "declares what {} entry point extends",
                            "declares what {} entry points extend", "monica, lobsters"};
constexpr Signal kHolder{"holds_entry_points", 1.3, "names their base type {} time",
                         "names their base type {} times", "crates.io, mockito"};

constexpr Signal kOfFew{"holds_entry_points", 1.9,
                        "is one of few that name their base type, {} time",
                        "is one of few that name their base type, {} times", "jekyll, halo"};
constexpr std::size_t kFewHolders = 5;
constexpr std::size_t kMostBaseHops = 6;
// The base of a group among them: so many, and so many groups.
constexpr std::size_t kLeastOfGroup = 3;
constexpr std::size_t kMostGroups = 3;
// What more files have to do with is known all over the product.
constexpr std::size_t kMostHolders = 10;

class Bases {
 public:
  Bases(const CodeEvidence& evidence, const DispatchRoots& roots,
        const std::set<DeclarationRef>& errors)
      : evidence_(evidence), roots_(roots), errors_(errors) {}

  std::vector<FileId> add_to(ScoreSheet& sheet) const {
    const std::size_t least = std::max<std::size_t>(1, (roots_.size() + 2) / 3);
    SeenBy direct;
    SeenBy far;
    SeenBy holders;
    std::vector<std::pair<std::size_t, DeclarationRef>> groups;
    for (const auto& [base, files] : bases()) {
      if (files.all.size() < least) {
        if (files.direct.size() >= kLeastOfGroup && !is_mixin(base))
          groups.emplace_back(files.direct.size(), base);
        continue;
      }
      const bool near = files.direct.size() >= least;
      if (!near && is_mixin(base)) continue;
      Seen& seen = (near ? direct : far)[base.file];
      const auto& named = near ? files.direct : files.all;
      seen.files.insert(named.begin(), named.end());
      seen.at.push_back(evidence_.place_of(base));
      note_holders(base, holders);
    }
    for (auto& [file, seen] : direct) {
      sheet.add(file, kBase, seen.files.size(), seen.at, names_and_lines(seen.at));
    }
    for (auto& [file, seen] : far) {
      if (direct.contains(file)) continue;
      sheet.add(file, kFarBase, seen.files.size(), seen.at, names_and_lines(seen.at));
    }
    std::ranges::stable_sort(groups, std::ranges::greater(), [](const auto& g) { return g.first; });
    if (groups.size() > kMostGroups) groups.resize(kMostGroups);
    for (const auto& [count, base] : groups) {
      if (direct.contains(base.file) || far.contains(base.file)) continue;
      sheet.add(base.file, kGroupBase, count, {evidence_.place_of(base)});
      note_holders(base, holders);
    }
    std::vector<FileId> few;
    for (auto& [file, seen] : holders) {
      if (direct.contains(file) || far.contains(file)) continue;
      if (holders.size() <= kFewHolders) few.push_back(file);
      sheet.add(file, holders.size() <= kFewHolders ? kOfFew : kHolder, seen.declarations, seen.at);
    }
    return few;
  }

 private:
  struct Base {
    std::set<FileId> direct;  // the entry points that name it themselves
    std::set<FileId> all;
  };

  void take_bases_of(FileId file, std::uint32_t within, std::set<DeclarationRef>& bases) const {
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.declaration == 0 || !kSubtyping.has(to.role)) continue;
      if (within == 0 || to.within == within) bases.insert({to.target, to.declaration - 1});
    }
  }

  // The types of the product that the entry points' own types come from.
  std::map<DeclarationRef, Base> bases() const {
    std::map<DeclarationRef, Base> bases;
    for (const FileId root : roots_.files()) {
      std::set<DeclarationRef> known;
      take_bases_of(root, 0, known);
      const auto own =
          std::ranges::equal_range(roots_.headers(), root, {}, &DispatchRoots::Header::root);
      for (const auto& header : own) take_bases_of(header.file, 0, known);
      for (const DeclarationRef base : known) bases[base].direct.insert(root);
      std::set<DeclarationRef> open = known;
      for (std::size_t hop = 0; !open.empty() && hop < kMostBaseHops; ++hop) {
        std::set<DeclarationRef> next;
        for (const DeclarationRef base : open) take_bases_of(base.file, base.place + 1, next);
        open.clear();
        for (const DeclarationRef base : next) {
          if (known.insert(base).second) open.insert(base);
        }
      }
      for (const DeclarationRef base : known) bases[base].all.insert(root);
    }
    std::erase_if(bases, [this](const auto& entry) {
      return errors_.contains(entry.first) || !roots_.may_dispatch(entry.first.file);
    });
    return bases;
  }

  // Who has to do with the base type without deriving from it.
  void note_holders(DeclarationRef base, SeenBy& holders) const {
    SeenBy found;
    std::set<FileId> deriving;
    for (const std::uint32_t at : evidence_.references_to(base)) {
      const IndexedReference& to = evidence_.reference(at);
      if (kSubtyping.has(to.role)) deriving.insert(to.source);
      if (!roots_.may_dispatch(to.source) || to.source == base.file) continue;
      Seen& seen = found[to.source];
      seen.declarations += to.count;
      seen.at.push_back(evidence_.place_of(to));
    }
    std::erase_if(found, [&](const auto& entry) { return deriving.contains(entry.first); });
    if (found.size() > kMostHolders) return;
    for (auto& [file, seen] : found) {
      Seen& holder = holders[file];
      holder.declarations += seen.declarations;
      std::ranges::move(seen.at, std::back_inserter(holder.at));
    }
  }

  // What a base takes in to be put together is no way to the entry points.
  bool is_mixin(DeclarationRef type) const {
    const DeclarationKind kind = evidence_[type].kind;
    return (kind == DeclarationKind::kTrait || kind == DeclarationKind::kModule) &&
           evidence_[type].abstract_methods == 0;
  }

  const CodeEvidence& evidence_;
  const DispatchRoots& roots_;
  const std::set<DeclarationRef>& errors_;
};

}  // namespace

std::vector<index::FileId> add_bases(ScoreSheet& sheet, const CodeEvidence& evidence,
                                     const DispatchRoots& roots,
                                     const std::set<index::DeclarationRef>& errors) {
  return Bases(evidence, roots, errors).add_to(sheet);
}

}  // namespace kestrix
