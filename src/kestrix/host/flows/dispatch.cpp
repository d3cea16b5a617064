#include "kestrix/host/flows/dispatch.h"

#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/flows/dispatch_roots.h"
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
constexpr Signal kUser{"uses_entry_points", 1.8, "uses {} entry point", "uses {} entry points",
                       "lobsters, nowinandroid"};
constexpr Signal kFellow{"names_its_entry_point", 1.5, "names {} handler of the class",
                         "names {} handlers of the class", "netbox, lobsters"};
constexpr Signal kShared{"serves_entry_points", 1.5, "declares what {} entry point calls or bears",
                         "declares what {} entry points call or bear", "netbox, umami"};
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
// A group's own hub names so many of it, and so many are looked for.
constexpr std::size_t kLeastOfGroup = 4;
constexpr std::size_t kMostGroupHubs = 6;
constexpr std::size_t kMostUsers = 3;
// So few roots or so many hubs tell nothing about the folder.
constexpr std::size_t kFewRoots = 3;
constexpr std::size_t kFewHubs = 3;

class DispatchSignals {
 public:
  DispatchSignals(const FlowEvidence& flows, std::span<const FileId> roots)
      : evidence_(flows.code),
        graph_(flows.graph),
        handlers_(flows.handlers),
        tables_(flows.tables),
        roots_(flows.code, roots) {}

  ScoreSheet sheet() {
    ScoreSheet sheet(evidence_);
    if (roots_.size() == 0) return sheet;
    add_hubs(sheet);
    add_bases(sheet, evidence_, roots_);
    add_shared(sheet, roots_.files(), kShared);
    add_second_hop(sheet);
    add_beside(sheet);
    add_tables(sheet, evidence_, tables_, roots_.files());
    if (found_by_framework()) add_starts(sheet, evidence_, graph_, roots_.files(), hubs_.empty());
    return sheet;
  }

 private:
  bool found_by_framework() const {
    const auto known = std::ranges::count_if(
        roots_.files(), [this](FileId root) { return handlers_.contains(root); });
    return static_cast<std::size_t>(known) * 2 >= roots_.size();
  }

  SeenBy namers_of(const std::vector<FileId>& files) const {
    SeenBy namers;
    for (const FileId file : files) {
      for (const Naming& naming : graph_.to(file)) {
        if (!naming.names || naming.derives || !roots_.may_dispatch(naming.from)) continue;
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
    SeenBy namers = namers_of(roots_.files());
    add_registering(namers);
    for (const FileId file : hubs_among(namers)) {
      hubs_.push_back(file);
      sheet.add(file, kHub, namers.at(file).files.size(), namers.at(file).at);
    }
    if (hubs_.empty()) add_fellows(sheet, namers);
    if (hubs_.empty() && namers.size() <= kFewNamers) add_all(sheet, namers);
    if (hubs_.empty()) add_users(sheet, namers);
  }

  // Who has half of them for type arguments hands them over to something.
  void add_registering(SeenBy& namers) const {
    std::map<FileId, std::size_t> uses;
    for (const FileId root : roots_.files()) {
      for (const Naming& naming : graph_.to(root)) uses[naming.from] += naming.used ? 1U : 0U;
    }
    for (const FileId root : roots_.files()) {
      for (const Naming& naming : graph_.to(root)) {
        const std::size_t count = uses[naming.from];
        if (count < kFewRoots || count * 2 < roots_.size() || naming.names || naming.derives ||
            !naming.used || !roots_.may_dispatch(naming.from)) {
          continue;
        }
        Seen& seen = namers[naming.from];
        seen.files.insert(root);
        seen.declarations += naming.declarations;
        seen.at.push_back(place_of(naming));
      }
    }
  }

  // Those that name many; where that leaves many out, those that name several, most first: each
  // group of entry points may have its own.
  std::vector<FileId> hubs_among(const SeenBy& namers) const {
    std::vector<FileId> order;
    for (const auto& [file, seen] : namers) order.push_back(file);
    std::ranges::stable_sort(order, std::ranges::greater(),
                             [&](FileId file) { return namers.at(file).files.size(); });
    const std::size_t least = least_of(roots_.size());
    std::vector<FileId> hubs;
    std::set<FileId> named;
    for (const FileId file : order) {
      const auto& files = namers.at(file).files;
      const bool enough = 3 * named.size() >= 2 * roots_.size() || hubs.size() >= kMostGroupHubs;
      if (files.size() < least && (enough || files.size() < kLeastOfGroup)) break;
      hubs.push_back(file);
      named.insert(files.begin(), files.end());
    }
    std::ranges::sort(hubs);
    return hubs;
  }

  // Nobody leads to many: those that make use of the most of them.
  void add_users(ScoreSheet& sheet, const SeenBy& namers) const {
    std::size_t most = 0;
    for (const auto& [file, seen] : namers) most = std::max(most, seen.files.size());
    std::size_t added = 0;
    for (std::size_t count = most; count > 1 && added < kMostUsers; --count) {
      for (const auto& [file, seen] : namers) {
        if (seen.files.size() != count || added == kMostUsers) continue;
        sheet.add(file, kUser, count, seen.at);
        ++added;
      }
    }
  }

  // A package with one face: nobody names the other files.
  void add_all(ScoreSheet& sheet, const SeenBy& namers) {
    for (const auto& [file, seen] : namers) {
      sheet.add(file, kHub, seen.files.size(), seen.at);
      hubs_.push_back(file);
    }
  }

  // "urls.py", of "user.module.ts" the last words.
  static std::string_view kind_of(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::string_view stem = name.substr(0, name.rfind('.'));
    const auto word = stem.find_last_of("._-");
    return word == std::string_view::npos ? name : name.substr(word);
  }

  // Each entry point has a file beside it that names it, all of one name.
  void add_fellows(ScoreSheet& sheet, const SeenBy& namers) {
    std::map<std::string_view, std::pair<std::vector<FileId>, std::set<FileId>>> by_name;
    for (const auto& [file, seen] : namers) {
      auto& [files, named] = by_name[kind_of(evidence_.path(file))];
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

  // What half of the files call or bear, and few others do.
  void add_shared(ScoreSheet& sheet, const std::vector<FileId>& files, const Signal& signal) const {
    if (files.size() < 2) return;
    static constexpr RoleSet kServing{Role::kCalls, Role::kAnnotates};
    std::map<DeclarationRef, std::set<FileId>> callers;
    for (const FileId file : files) {
      for (const IndexedReference& to : evidence_.index().references_from(file)) {
        if (to.declaration == 0 || !kServing.has(to.role) || !roots_.may_dispatch(to.target))
          continue;
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
    for (const FileId root : roots_.files()) folders.insert(directory_of(evidence_.path(root)));
    std::map<FileId, std::vector<Place>> beside;
    for (const FileId hub : hubs_) {
      for (const Naming& naming : graph_.from(hub)) {
        const bool used = naming.names && naming.used;
        if (!used || !roots_.may_dispatch(naming.to)) continue;
        if (!folders.contains(directory_of(evidence_.path(naming.to)))) continue;
        beside[naming.to].push_back(place_of(naming));
      }
    }
    if (beside.size() * 3 > std::max(roots_.size(), 2 * kFewRoots))
      return;  // a folder of many things
    for (auto& [file, at] : beside) sheet.add(file, kBeside, at.size(), at);
  }

  const CodeEvidence& evidence_;
  const NamingGraph& graph_;
  const std::map<FileId, HandlerSign>& handlers_;
  TableTexts& tables_;
  DispatchRoots roots_;
  std::vector<FileId> hubs_;
};

}  // namespace

ScoreSheet dispatch_sheet(const FlowEvidence& evidence, std::span<const FileId> roots) {
  return DispatchSignals(evidence, roots).sheet();
}

}  // namespace kestrix
