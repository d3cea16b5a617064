#include "kestrix/host/flows/dispatch/dispatch_hubs.h"

#include <algorithm>
#include <string_view>

#include "kestrix/text/sorting.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr Signal kHub{"names_entry_points", 3.0, "names {} entry point", "names {} entry points",
                      "lazygit, BookStack"};
constexpr Signal kUser{"uses_entry_points", 1.8, "uses {} entry point", "uses {} entry points",
                       "lobsters"};
constexpr Signal kFellow{"names_its_entry_point", 1.5, "names {} handler of the class",
                         "names {} handlers of the class", "netbox, firefly"};

// A quarter: a route table may be split by area or by version.
constexpr std::size_t kHubShare = 4;
// Who is named by more files than this is of use to many; naming it shows nothing.
constexpr std::size_t kFewNamers = 5;
// A group's own hub names so many of it, and so many are looked for.
constexpr std::size_t kLeastOfGroup = 4;
constexpr std::size_t kMostGroupHubs = 6;
// A table names hardly anything but so many entry points.
constexpr std::size_t kLeastOfTable = 3;
// A fellow is one entry point's, not of use to many.
constexpr std::size_t kMostOfFellow = 2;
constexpr std::size_t kMostUsers = 3;
// So few roots tell nothing about who names a share of them.
constexpr std::size_t kFewRoots = 3;
constexpr double kLeastOwn = 0.5;

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }

class Hubs {
 public:
  explicit Hubs(Dispatch& dispatch)
      : dispatch_(dispatch),
        evidence_(dispatch.evidence),
        graph_(dispatch.graph),
        roots_(dispatch.roots) {
    for (const auto& [header, root] : roots_.headers()) take_namers(header, root);
    for (const FileId root : roots_.files()) take_namers(root, root);
    add_registering();
  }

  void add() {
    for (const FileId file : leading()) add_hub(file, kHub, namers_.at(file).files.size());
    if (hubs().empty()) add_fellows();
    if (hubs().empty() && namers_.size() <= kFewNamers) add_all();
    if (hubs().empty()) add_users();
    sort_distinct(hubs());
  }

 private:
  std::vector<FileId>& hubs() { return dispatch_.hubs; }

  void add_hub(FileId file, const Signal& signal, std::size_t count) {
    add(file, signal, count);
    hubs().push_back(file);
  }

  void add(FileId file, const Signal& signal, std::size_t count) {
    const Seen& seen = namers_.at(file);
    dispatch_.sheet.add(file, signal, count, seen.at);
    dispatch_.lead(file, seen.files);
  }

  // `root` stands for `file` on the page.
  void take_namers(FileId file, FileId root) {
    for (const Naming& naming : graph_.to(file)) {
      if (!naming.names || naming.derives || !roots_.may_dispatch(naming.from)) continue;
      namers_[naming.from].take(evidence_, naming, root);
    }
  }

  std::size_t least() const {
    return roots_.size() < kFewRoots
               ? 1
               : std::max<std::size_t>(2, (roots_.size() + kHubShare - 1) / kHubShare);
  }

  // Who has half of them for type arguments hands them over to something.
  void add_registering() {
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
        namers_[naming.from].take(evidence_, naming, root);
      }
    }
  }

  // Half of all that it names are entry points.
  bool is_table(FileId file, std::size_t named) const {
    return named >= kLeastOfTable && named * 2 >= graph_.from(file).size();
  }

  // Those that name many; where that leaves many out, those that name several, most first: each
  // group of entry points may have its own.
  std::vector<FileId> leading() const {
    std::vector<FileId> order;
    for (const auto& [file, seen] : namers_) order.push_back(file);
    std::ranges::stable_sort(order, std::ranges::greater(),
                             [&](FileId file) { return namers_.at(file).files.size(); });
    if (roots_.size() < kFewRoots && order.size() > kFewNamers) return most_of(order);
    std::vector<FileId> hubs;
    std::set<FileId> named;
    for (const FileId file : order) {
      const auto& files = namers_.at(file).files;
      const bool enough = 3 * named.size() >= 2 * roots_.size() || hubs.size() >= kMostGroupHubs;
      const bool of_group = !enough && files.size() >= kLeastOfGroup;
      if (files.size() < least() && !of_group && !is_table(file, files.size())) continue;
      hubs.push_back(file);
      named.insert(files.begin(), files.end());
    }
    return hubs;
  }

  // Anyone who calls one of two entry points names a share of them: those that name the most of
  // what hardly anyone else does.
  std::vector<FileId> most_of(std::vector<FileId> files) const {
    std::map<FileId, double> own;
    for (const FileId root : roots_.files()) add_own_names(root, own);
    std::erase_if(files, [&](FileId file) { return own[file] < kLeastOwn; });
    std::ranges::stable_sort(files, std::ranges::greater(),
                             [&](FileId file) { return own.at(file); });
    files.resize(std::min(files.size(), kFewNamers));
    return files;
  }

  // For each that names it, by the declarations that it names and by how few others do.
  void add_own_names(FileId file, std::map<FileId, double>& own) const {
    std::map<std::uint32_t, std::set<FileId>> by_declaration;
    for (const std::uint32_t at : evidence_.references_to(file)) {
      const index::IndexedReference& to = evidence_.reference(at);
      if (namers_.contains(to.source)) by_declaration[to.declaration].insert(to.source);
    }
    for (const auto& [declaration, from] : by_declaration) {
      for (const FileId each : from) own[each] += 1.0 / static_cast<double>(from.size());
    }
  }

  // Nobody leads to many: those that make use of the most of them.
  void add_users() {
    std::size_t most = 0;
    for (const auto& [file, seen] : namers_) most = std::max(most, seen.files.size());
    std::size_t added = 0;
    for (std::size_t count = most; count > 1 && added < kMostUsers; --count) {
      for (const auto& [file, seen] : namers_) {
        if (seen.files.size() != count || added == kMostUsers) continue;
        add(file, kUser, count);
        ++added;
      }
    }
  }

  // A package with one face: nobody names the other files.
  void add_all() {
    for (const auto& [file, seen] : namers_) add_hub(file, kHub, seen.files.size());
  }

  // "urls.py", of "user.module.ts" and "UserScreen.kt" the last words.
  static std::string_view kind_of(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::string_view stem = name.substr(0, name.rfind('.'));
    auto word = stem.find_last_of("._-");
    if (word == std::string_view::npos) {
      const auto last = std::find_if(stem.rbegin(), stem.rend(), is_upper);
      if (last != stem.rend()) word = static_cast<std::size_t>(stem.rend() - last) - 1;
    }
    return word == std::string_view::npos ? name : name.substr(word);
  }

  // Each entry point has a file that names it, all of one name or in one folder.
  void add_fellows() {
    if (add_alike(kind_of)) return;
    add_alike(directory_of);
  }

  bool add_alike(std::string_view (*alike)(std::string_view)) {
    std::map<std::string_view, std::pair<std::vector<FileId>, std::set<FileId>>> groups;
    for (const auto& [file, seen] : namers_) {
      if (seen.files.size() > kMostOfFellow) continue;
      auto& [files, named] = groups[alike(evidence_.path(file))];
      files.push_back(file);
      named.insert(seen.files.begin(), seen.files.end());
    }
    for (const auto& [name, group] : groups) {
      const auto& [files, named] = group;
      if (files.size() < 2 || named.size() * 2 < roots_.size()) continue;
      for (const FileId file : files) add_hub(file, kFellow, namers_.at(file).declarations);
    }
    return !hubs().empty();
  }

  Dispatch& dispatch_;
  const CodeEvidence& evidence_;
  const NamingGraph& graph_;
  const DispatchRoots& roots_;
  SeenBy namers_;
};

}  // namespace

void add_hubs(Dispatch& dispatch) { Hubs(dispatch).add(); }

}  // namespace kestrix
