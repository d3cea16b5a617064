#include "kestrix/host/flows/dispatch.h"

#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/flows/starts.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/sorting.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kHub{"names_entry_points", 3.0, "names {} entry point", "names {} entry points",
                      "lazygit, BookStack"};
constexpr Signal kFellow{"names_its_entry_point", 1.5, "names {} handler of the class",
                         "names {} handlers of the class", "netbox, lobsters"};
constexpr Signal kBase{"entry_point_base", 2.0, "declares what {} entry point extends",
                       "declares what {} entry points extend", "netbox, mockito"};
constexpr Signal kFarBase{"entry_point_base", 0.8, "declares what {} entry point comes from",
                          "declares what {} entry points come from", "netbox, lobsters"};
constexpr Signal kShared{"serves_entry_points", 1.5, "declares what {} entry point calls or bears",
                         "declares what {} entry points call or bear", "netbox, umami"};
constexpr Signal kHolder{"holds_entry_points", 1.3, "names their base type {} time",
                         "names their base type {} times", "crates.io, mockito"};
constexpr Signal kCaller{"names_dispatch", 2.5, "names {} file that dispatches",
                         "names {} files that dispatch", "netbox, crates.io"};
constexpr Signal kDispatchBase{"serves_dispatch", 2.0, "declares what {} dispatching file calls",
                               "declares what {} dispatching files call", "netbox, lobsters"};

constexpr Signal kBeside{"beside_entry_points", 2.5,
                         "lies among them, and {} dispatching file uses it",
                         "lies among them, and {} dispatching files use it", "lazygit, polar"};

// A quarter: a route table may be split by area or by version.
constexpr std::size_t kHubShare = 4;
// Who is named by more files than this is of use to many; naming it shows nothing.
constexpr std::size_t kFewNamers = 5;
// Of those who call what entry points share, so many have to be entry points.
constexpr double kServesMostly = 0.5;
// So few roots or so many hubs tell nothing about the folder.
constexpr std::size_t kFewRoots = 3;
constexpr std::size_t kFewHubs = 3;
constexpr std::size_t kMostBaseHops = 6;

class DispatchSignals {
 public:
  DispatchSignals(const FlowEvidence& flows, std::span<const FileId> roots)
      : evidence_(flows.code),
        graph_(flows.graph),
        handlers_(flows.handlers),
        tables_(flows.tables),
        roots_(roots.begin(), roots.end()),
        root_(evidence_.index().files().size()) {
    std::size_t product = 0;
    for (const FileId root : roots_) {
      root_[root] = true;
      product += evidence_.is_product(root) ? 1U : 0U;
    }
    of_product_ = product * 2 >= roots_.size();
  }

  ScoreSheet sheet() {
    ScoreSheet sheet(evidence_);
    if (roots_.empty()) return sheet;
    add_hubs(sheet);
    add_bases(sheet);
    add_shared(sheet, roots_, kShared);
    add_second_hop(sheet);
    add_beside(sheet);
    add_tables(sheet, evidence_, tables_, roots_);
    if (found_by_framework()) add_starts(sheet, evidence_, graph_, roots_, hubs_.empty());
    return sheet;
  }

 private:
  struct Seen {
    std::set<FileId> files;
    std::size_t declarations = 0;
    std::vector<Place> at;
  };
  using SeenBy = std::map<FileId, Seen>;

  bool may_dispatch(FileId file) const {
    if (root_[file] || evidence_.index().files()[file].document) return false;
    return of_product_ ? evidence_.is_product(file) : !evidence_.is_test(file);
  }

  bool found_by_framework() const {
    const auto known =
        std::ranges::count_if(roots_, [this](FileId root) { return handlers_.contains(root); });
    return static_cast<std::size_t>(known) * 2 >= roots_.size();
  }

  SeenBy namers_of(const std::vector<FileId>& files) const {
    SeenBy namers;
    for (const FileId file : files) {
      for (const Naming& naming : graph_.to(file)) {
        if (!naming.names || naming.derives || !may_dispatch(naming.from)) continue;
        Seen& seen = namers[naming.from];
        seen.files.insert(file);
        seen.declarations += naming.declarations;
        seen.at.push_back(place_of(naming));
      }
    }
    return namers;
  }

  // Where it is named; where no reference shows that, what is named.
  Place place_of(const Naming& naming) const {
    const FileId shown = naming.line > 0 ? naming.from : naming.to;
    return {std::string(evidence_.path(shown)), naming.line, {}};
  }

  static std::size_t least_of(std::size_t count) {
    return count < 3 ? 1 : std::max<std::size_t>(2, (count + kHubShare - 1) / kHubShare);
  }

  void add_hubs(ScoreSheet& sheet) {
    SeenBy namers = namers_of(roots_);
    const std::size_t least = least_of(roots_.size());
    for (const auto& [file, seen] : namers) {
      if (seen.files.size() < least) continue;
      hubs_.push_back(file);
      sheet.add(file, kHub, seen.files.size(), seen.at);
    }
    if (hubs_.empty()) add_fellows(sheet, namers);
    if (hubs_.empty() && namers.size() <= kFewNamers) add_all(sheet, namers);
  }

  // A package with one face: nobody names the other files.
  void add_all(ScoreSheet& sheet, const SeenBy& namers) {
    for (const auto& [file, seen] : namers) {
      sheet.add(file, kHub, seen.files.size(), seen.at);
      hubs_.push_back(file);
    }
  }

  // Each entry point has a file beside it that names it, all of one name.
  void add_fellows(ScoreSheet& sheet, const SeenBy& namers) {
    std::map<std::string_view, std::pair<std::vector<FileId>, std::set<FileId>>> by_name;
    for (const auto& [file, seen] : namers) {
      const std::string_view path = evidence_.path(file);
      auto& [files, named] = by_name[path.substr(path.rfind('/') + 1)];
      files.push_back(file);
      named.insert(seen.files.begin(), seen.files.end());
    }
    for (const auto& [name, group] : by_name) {
      const auto& [files, named] = group;
      if (files.size() < 2 || named.size() * 2 < roots_.size()) continue;
      for (const FileId file : files) {
        sheet.add(file, kFellow, namers.at(file).declarations, namers.at(file).at);
        hubs_.push_back(file);
      }
    }
    sort_distinct(hubs_);
  }

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
    for (const FileId root : roots_) {
      std::set<DeclarationRef> known;
      take_bases_of(root, 0, known);
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
    std::erase_if(bases, [this](const auto& entry) { return !may_dispatch(entry.first.file); });
    return bases;
  }

  void add_bases(ScoreSheet& sheet) {
    const std::size_t least = std::max<std::size_t>(1, (roots_.size() + 2) / 3);
    SeenBy direct;
    SeenBy far;
    SeenBy holders;
    for (const auto& [base, files] : bases()) {
      if (files.all.size() < least) continue;
      const bool near = files.direct.size() >= least;
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
    for (auto& [file, seen] : holders) {
      if (direct.contains(file) || far.contains(file)) continue;
      sheet.add(file, kHolder, seen.declarations, seen.at);
    }
  }

  // Who has to do with the base type without deriving from it.
  void note_holders(DeclarationRef base, SeenBy& holders) const {
    SeenBy found;
    std::set<FileId> deriving;
    for (const std::uint32_t at : evidence_.references_to(base)) {
      const IndexedReference& to = evidence_.reference(at);
      if (kSubtyping.has(to.role)) deriving.insert(to.source);
      if (!may_dispatch(to.source) || to.source == base.file) continue;
      Seen& seen = found[to.source];
      seen.declarations += to.count;
      seen.at.push_back(evidence_.place_of(to));
    }
    std::erase_if(found, [&](const auto& entry) { return deriving.contains(entry.first); });
    if (found.size() > 2 * kFewNamers) return;
    for (auto& [file, seen] : found) {
      Seen& holder = holders[file];
      holder.declarations += seen.declarations;
      std::ranges::move(seen.at, std::back_inserter(holder.at));
    }
  }

  // What half of the files call or bear, and few others do.
  void add_shared(ScoreSheet& sheet, const std::vector<FileId>& files, const Signal& signal) const {
    if (files.size() < 2) return;
    static constexpr RoleSet kServing{Role::kCalls, Role::kAnnotates};
    std::map<DeclarationRef, std::set<FileId>> callers;
    for (const FileId file : files) {
      for (const IndexedReference& to : evidence_.index().references_from(file)) {
        if (to.declaration == 0 || !kServing.has(to.role) || !may_dispatch(to.target)) continue;
        callers[{to.target, to.declaration - 1}].insert(file);
      }
    }
    SeenBy by_file;
    for (const auto& [called, by] : callers) {
      if (by.size() * 2 < files.size() || by.size() < 2) continue;
      const auto all = evidence_.files_naming(called, kServing).size();
      if (static_cast<double>(by.size()) < kServesMostly * static_cast<double>(all)) continue;
      Seen& seen = by_file[called.file];
      seen.files.insert(by.begin(), by.end());
      seen.at.push_back(evidence_.place_of(called));
    }
    for (auto& [file, seen] : by_file) {
      sheet.add(file, signal, seen.files.size(), seen.at, names_and_lines(seen.at));
    }
  }

  void add_second_hop(ScoreSheet& sheet) const {
    if (hubs_.empty()) return;
    for (const auto& [file, seen] : namers_of(hubs_)) {
      const bool few = std::ranges::any_of(
          seen.files, [&](FileId hub) { return graph_.to(hub).size() <= kFewNamers; });
      if (!few || seen.files.size() < least_of(hubs_.size())) continue;
      sheet.add(file, kCaller, seen.files.size(), seen.at);
    }
    add_shared(sheet, hubs_, kDispatchBase);
  }

  // What lies among the entry points and is called by their dispatch takes part in it.
  void add_beside(ScoreSheet& sheet) const {
    if (roots_.size() < kFewRoots || hubs_.size() > kFewHubs) return;
    std::set<std::string_view> folders;
    for (const FileId root : roots_) folders.insert(directory_of(evidence_.path(root)));
    std::map<FileId, std::vector<Place>> beside;
    for (const FileId hub : hubs_) {
      for (const Naming& naming : graph_.from(hub)) {
        if (!naming.names || !may_dispatch(naming.to)) continue;
        if (!folders.contains(directory_of(evidence_.path(naming.to)))) continue;
        beside[naming.to].push_back(place_of(naming));
      }
    }
    for (auto& [file, at] : beside) sheet.add(file, kBeside, at.size(), at);
  }

  const CodeEvidence& evidence_;
  const NamingGraph& graph_;
  const std::map<FileId, HandlerSign>& handlers_;
  TableTexts& tables_;
  std::vector<FileId> roots_;
  std::vector<bool> root_;
  std::vector<FileId> hubs_;
  bool of_product_ = true;
};

}  // namespace

ScoreSheet dispatch_sheet(const FlowEvidence& evidence, std::span<const FileId> roots) {
  return DispatchSignals(evidence, roots).sheet();
}

}  // namespace kestrix
