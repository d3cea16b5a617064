#include "kestrix/host/flows/dispatch/dispatch_hops.h"

#include <algorithm>
#include <string_view>

#include "kestrix/host/index_evidence.h"
#include "kestrix/text/sorting.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kShared{"serves_entry_points", 1.5, "declares what {} entry point calls or bears",
                         "declares what {} entry points call or bear", "redis, umami"};
constexpr Signal kTaken{"taken_by_entry_points", 1.5, "declares what {} entry point takes",
                        "declares what {} entry points take", "nowinandroid, caddy"};
constexpr Signal kCaller{
    "names_dispatch", 2.5, "is one of few that have to do with {} dispatching file",
    "is one of few that have to do with {} dispatching files", "BookStack, firefly"};
constexpr Signal kDispatchBase{"serves_dispatch", 2.0, "declares what {} dispatching file calls",
                               "declares what {} dispatching files call", "netbox"};
constexpr Signal kHeader{"declares_dispatch", 1.6, "declares what {} dispatching file defines",
                         "declares what {} dispatching files define", "redis, yaml-cpp"};
constexpr Signal kBeside{"beside_entry_points", 2.5,
                         "lies among them, and {} dispatching file uses it",
                         "lies among them, and {} dispatching files use it", "lazygit, cli"};

// What more files have to do with is known all over the product.
constexpr std::size_t kFewCallers = 3;
// Of those who call what entry points share, so many have to be entry points.
constexpr double kServesMostly = 0.5;
// So few roots or so many hubs tell nothing about the folder.
constexpr std::size_t kFewRoots = 3;
constexpr std::size_t kFewHubs = 3;
// Of many hubs so large a share has to do with who calls them.
constexpr std::size_t kShareOfMany = 4;

class Hops {
 public:
  explicit Hops(Dispatch& dispatch)
      : dispatch_(dispatch),
        evidence_(dispatch.evidence),
        graph_(dispatch.graph),
        roots_(dispatch.roots),
        hubs_(dispatch.hubs) {}

  void add() {
    add_shared(roots_.files(), {Role::kCalls, Role::kAnnotates}, kShared);
    add_shared(roots_.files(), {Role::kType, Role::kLists}, kTaken);
    add_callers();
    add_headers();
    if (hubs_.empty()) return;
    if (hubs_.size() > kFewHubs) add_shared(hubs_, {Role::kCalls, Role::kAnnotates}, kDispatchBase);
    add_beside();
  }

 private:
  bool known_to_dispatch(DeclarationRef type) const {
    for (const std::uint32_t at : evidence_.references_to(type)) {
      const FileId from = evidence_.reference(at).source;
      if (from != type.file && dispatch_.sheet.score(from) > 0) return true;
    }
    return false;
  }

  // What half of the files call or bear, and few others do.
  void add_shared(const std::vector<FileId>& files, RoleSet serving, const Signal& signal) {
    if (files.size() < 2) return;
    std::map<DeclarationRef, std::set<FileId>> callers;
    for (const FileId file : files) {
      for (const IndexedReference& to : evidence_.index().references_from(file)) {
        if (to.declaration == 0 || !serving.has(to.role) || !roots_.may_dispatch(to.target))
          continue;
        callers[{to.target, to.declaration - 1}].insert(file);
      }
    }
    SeenBy by_file;
    for (const auto& [called, by] : callers) {
      if (by.size() * 2 < files.size() || by.size() < 2) continue;
      if (serving.has(Role::kType) && !known_to_dispatch(called)) continue;
      const auto all = evidence_.files_naming(called, serving).size();
      if (static_cast<double>(by.size()) < kServesMostly * static_cast<double>(all)) continue;
      Seen& seen = by_file[called.file];
      seen.files.insert(by.begin(), by.end());
      seen.at.push_back(evidence_.place_of(called));
    }
    for (auto& [file, seen] : by_file) {
      dispatch_.sheet.add(file, signal, seen.files.size(), seen.at, names_and_lines(seen.at));
    }
  }

  // The types that a file's own types come from, if hardly anything else does.
  std::set<FileId> contracts_of(FileId file) const {
    std::set<FileId> contracts;
    for (const Naming& naming : graph_.from(file)) {
      if (!naming.derives) continue;
      const auto deriving =
          std::ranges::count_if(graph_.to(naming.to), [](const Naming& to) { return to.derives; });
      if (deriving == 1) contracts.insert(naming.to);
    }
    return contracts;
  }

  std::vector<FileId> leading_files() const {
    std::vector<FileId> leading = hubs_;
    if (dispatch_.holders.size() < kFewHubs) {
      leading.insert(leading.end(), dispatch_.holders.begin(), dispatch_.holders.end());
    }
    sort_distinct(leading);
    return leading;
  }

  // Who has one of them, or the interface that it alone implements.
  void add_callers() {
    const std::vector<FileId> leading = leading_files();
    SeenBy callers;
    for (const FileId hub : leading) {
      std::set<FileId> faces = contracts_of(hub);
      faces.insert(hub);
      SeenBy found;
      for (const FileId face : faces) {
        for (const Naming& naming : graph_.to(face)) {
          if (!naming.used || naming.derives || !roots_.may_dispatch(naming.from)) continue;
          found[naming.from].take(evidence_, naming, hub);
        }
      }
      if (found.size() > kFewCallers) continue;
      for (auto& [file, seen] : found) {
        Seen& caller = callers[file];
        caller.files.insert(hub);
        std::ranges::move(seen.at, std::back_inserter(caller.at));
      }
    }
    // Of many it is the one that several have to do with.
    const std::size_t least =
        leading.size() <= kFewHubs ? 1 : std::max<std::size_t>(2, leading.size() / kShareOfMany);
    for (const auto& [file, seen] : callers) {
      if (seen.files.size() < least) continue;
      dispatch_.sheet.add(file, kCaller, seen.files.size(), seen.at);
      for (const FileId hub : seen.files) dispatch_.lead(file, dispatch_.reached[hub]);
    }
  }

  void add_headers() {
    for (const FileId leading : leading_files()) {
      for (const FileId header : headers_of(evidence_, leading)) {
        if (!roots_.may_dispatch(header)) continue;
        dispatch_.sheet.add(header, kHeader, 1, {{std::string(evidence_.path(leading)), 0, {}}});
      }
    }
  }

  // What lies among the entry points and is called by their dispatch takes part in it.
  void add_beside() {
    if (roots_.size() < kFewRoots || hubs_.size() > kFewHubs) return;
    std::set<std::string_view> folders;
    for (const FileId root : roots_.files()) folders.insert(directory_of(evidence_.path(root)));
    SeenBy beside;
    for (const FileId hub : hubs_) {
      for (const Naming& naming : graph_.from(hub)) {
        const bool used = naming.names && naming.used;
        if (!used || !roots_.may_dispatch(naming.to)) continue;
        if (!folders.contains(directory_of(evidence_.path(naming.to)))) continue;
        beside[naming.to].take(evidence_, naming, hub);
      }
    }
    if (beside.size() * 3 > std::max(roots_.size(), 2 * kFewRoots))
      return;  // a folder of many things
    for (const auto& [file, seen] : beside)
      dispatch_.sheet.add(file, kBeside, seen.at.size(), seen.at);
  }

  Dispatch& dispatch_;
  const CodeEvidence& evidence_;
  const NamingGraph& graph_;
  const DispatchRoots& roots_;
  const std::vector<FileId>& hubs_;
};

}  // namespace

void add_hops(Dispatch& dispatch) { Hops(dispatch).add(); }

}  // namespace kestrix
