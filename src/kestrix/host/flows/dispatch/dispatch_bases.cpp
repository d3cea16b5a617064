#include <algorithm>

#include "kestrix/host/flows/dispatch/dispatch_roots.h"
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
  Bases(Dispatch& dispatch, const std::set<DeclarationRef>& errors)
      : dispatch_(dispatch),
        evidence_(dispatch.evidence),
        roots_(dispatch.roots),
        errors_(errors) {}

  void add() {
    const std::map<DeclarationRef, Base> bases = find();
    const std::size_t least = std::max<std::size_t>(1, (roots_.size() + 2) / 3);
    std::vector<const Entry*> groups;
    for (const Entry& entry : bases) {
      const auto& [base, files] = entry;
      const bool near = files.direct.size() >= least;
      if (!near && is_mixin(base)) continue;
      if (files.all.size() >= least) {
        take(base, near ? files.direct : files.all, near ? direct_ : far_);
        note_holders(base, files);
      } else if (files.direct.size() >= kLeastOfGroup) {
        groups.push_back(&entry);
      }
    }
    add_types(direct_, kBase);
    std::erase_if(far_, [this](const auto& entry) { return direct_.contains(entry.first); });
    add_types(far_, kFarBase);
    add_groups(groups);
    add_holders();
  }

 private:
  struct Base {
    std::set<FileId> direct;  // the entry points that name it themselves
    std::set<FileId> all;
  };
  using Entry = std::pair<const DeclarationRef, Base>;

  void take(DeclarationRef base, const std::set<FileId>& files, SeenBy& types) const {
    Seen& seen = types[base.file];
    seen.files.insert(files.begin(), files.end());
    seen.at.push_back(evidence_.place_of(base));
  }

  void add_types(const SeenBy& types, const Signal& signal) {
    for (const auto& [file, seen] : types) {
      dispatch_.sheet.add(file, signal, seen.files.size(), seen.at, names_and_lines(seen.at));
      dispatch_.lead(file, seen.files);
    }
  }

  bool is_known(FileId file) const { return direct_.contains(file) || far_.contains(file); }

  // What only some of them come from, those of the most first.
  void add_groups(std::vector<const Entry*>& groups) {
    std::ranges::stable_sort(groups, std::ranges::greater(),
                             [](const Entry* entry) { return entry->second.direct.size(); });
    groups.resize(std::min(groups.size(), kMostGroups));
    SeenBy types;
    for (const Entry* entry : groups) {
      if (is_known(entry->first.file)) continue;
      take(entry->first, entry->second.direct, types);
      note_holders(entry->first, entry->second);
    }
    add_types(types, kGroupBase);
  }

  void add_holders() {
    const bool few = holders_.size() <= kFewHolders;
    for (const auto& [file, seen] : holders_) {
      if (is_known(file)) continue;
      if (few) dispatch_.holders.push_back(file);
      dispatch_.sheet.add(file, few ? kOfFew : kHolder, seen.declarations, seen.at);
      dispatch_.lead(file, seen.files);
    }
  }

  void take_bases_of(FileId file, std::uint32_t within, std::set<DeclarationRef>& bases) const {
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.declaration == 0 || !kSubtyping.has(to.role)) continue;
      if (within == 0 || to.within == within) bases.insert({to.target, to.declaration - 1});
    }
  }

  // The types of the product that the entry points' own types come from.
  std::map<DeclarationRef, Base> find() const {
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
  void note_holders(DeclarationRef base, const Base& files) {
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
      Seen& holder = holders_[file];
      holder.files.insert(files.all.begin(), files.all.end());
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

  Dispatch& dispatch_;
  const CodeEvidence& evidence_;
  const DispatchRoots& roots_;
  const std::set<DeclarationRef>& errors_;
  SeenBy direct_;
  SeenBy far_;
  SeenBy holders_;
};

}  // namespace

void add_bases(Dispatch& dispatch, const std::set<DeclarationRef>& errors) {
  Bases(dispatch, errors).add();
}

}  // namespace kestrix
