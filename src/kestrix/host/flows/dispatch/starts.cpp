#include "kestrix/host/flows/dispatch/starts.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "kestrix/host/flows/folders.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/wildmatch.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr Signal kStart{"framework_start", 2.5, "is where such a product starts, from {} file",
                        "is where such a product starts, from {} files", "eShopOnWeb, BookStack"};
constexpr Signal kStartToo{"framework_start", 1.4, "is where such a product starts, from {} file",
                           "is where such a product starts, from {} files", "BookStack, lobsters"};
constexpr Signal kFollows{"follows_start", 2.0, "is what the start alone hands on to",
                          "is what {} starts alone hand on to", "umami, eShopOnWeb"};
// What knows so many files sets something up.
constexpr std::size_t kSetsUp = 3;
constexpr std::size_t kMostFollowers = 5;
// So many of the entry points lie below a start that is for a part of them.
constexpr std::size_t kPartShare = 4;
constexpr std::size_t kCrowd = 5;  // more programs of one framework are no product by themselves
constexpr std::string_view kPages = "tsx";

struct Pattern {
  index::Wildmatch glob;
  std::string_view name;
  std::string_view framework;
};

std::vector<Pattern> patterns_of(std::string_view language) {
  std::vector<Pattern> patterns;
  for (const auto& row : index::framework_names(language)) {
    if (row.known == index::Known::kStartPath) {
      patterns.push_back({index::Wildmatch(row.name), row.name, row.framework});
    }
  }
  return patterns;
}

struct Start {
  FileId file;
  std::string_view name;
  std::string_view framework;
};

// What is read by a tool may start the product, too.
bool may_start(const CodeEvidence& evidence, FileId file) {
  if (evidence.is_product(file)) return true;
  Roles roles = evidence.roles(file);
  roles.remove(Role::kTool);
  return roles.empty() && !evidence.index().files()[file].document;
}

std::vector<Start> starts_of(const CodeEvidence& evidence, const std::vector<FileId>& roots) {
  const auto files = evidence.index().files();
  const auto patterns = patterns_of(files[roots.front()].language);
  std::vector<Start> starts;
  if (patterns.empty()) return starts;
  for (FileId file = 0; file < files.size(); ++file) {
    if (!may_start(evidence, file) || std::ranges::binary_search(roots, file)) continue;
    const auto matching = std::ranges::find_if(
        patterns, [&](const Pattern& pattern) { return pattern.glob.matches(files[file].path); });
    // What renders pages starts nothing that does not.
    if (files[file].language == kPages && files[roots.front()].language != kPages) continue;
    if (matching != patterns.end()) starts.push_back({file, matching->name, matching->framework});
  }
  return starts;
}

std::size_t below(const CodeEvidence& evidence, FileId start, const std::vector<FileId>& roots) {
  const std::string_view folder = directory_of(evidence.path(start));
  return static_cast<std::size_t>(std::ranges::count_if(
      roots, [&](FileId root) { return lies_in(evidence.path(root), folder); }));
}

// Of one name those of the part that the entry points lie in; of the whole where that has none.
void keep_nearest(const CodeEvidence& evidence, std::string_view folder,
                  std::vector<Start>& starts) {
  std::map<std::string_view, std::string_view> nearest;
  for (;; folder = directory_of(folder)) {
    for (const Start& start : starts) {
      if (lies_in(evidence.path(start.file), folder)) nearest.try_emplace(start.name, folder);
    }
    if (folder.empty()) break;
  }
  std::erase_if(starts, [&](const Start& start) {
    return !lies_in(evidence.path(start.file), nearest.at(start.name));
  });
}

// Pages have their starts among and above them; where some lie so, others are of other products.
void keep_around_pages(const CodeEvidence& evidence, std::string_view folder,
                       std::vector<Start>& starts) {
  const auto around = [&](const Start& start) {
    const std::string_view own = directory_of(evidence.path(start.file));
    return lies_in(folder, own) || lies_in(own, folder) || own == folder;
  };
  const auto pages = [&](const Start& start) {
    return evidence.index().files()[start.file].language == kPages;
  };
  const bool any = std::ranges::any_of(
      starts, [&](const Start& start) { return pages(start) && around(start); });
  if (any) std::erase_if(starts, [&](const Start& start) { return !around(start); });
}

// Where there is one for each part of the product, those of the parts that hold entry points.
void keep_of_parts(const CodeEvidence& evidence, const std::vector<FileId>& roots,
                   std::vector<Start>& starts) {
  std::map<std::string_view, std::size_t> of_name;
  std::set<std::string_view> by_part;
  for (const Start& start : starts) {
    ++of_name[start.name];
    if (below(evidence, start.file, roots) * kPartShare >= roots.size()) by_part.insert(start.name);
  }
  std::erase_if(starts, [&](const Start& start) {
    const std::size_t held = below(evidence, start.file, roots);
    return of_name[start.name] > 1 && by_part.contains(start.name) &&
           held * kPartShare < roots.size();
  });
}

// Where so many are left, they start what a product is tried with.
void leave_out_crowds(std::vector<Start>& starts) {
  std::map<std::string_view, std::size_t> of_name;
  for (const Start& start : starts) ++of_name[start.name];
  std::erase_if(starts, [&](const Start& start) { return of_name[start.name] > kCrowd; });
}

// A list of what other entry points there are.
bool lists_others(const NamingGraph& graph, const std::vector<FileId>& roots,
                  const std::map<FileId, HandlerSign>& handlers, FileId file) {
  std::size_t others = 0;
  for (const Naming& naming : graph.from(file)) {
    if (!naming.names || !handlers.contains(naming.to)) continue;
    if (std::ranges::binary_search(roots, naming.to)) return false;
    ++others;
  }
  return others >= kSetsUp && others * 2 >= graph.from(file).size();
}

// What a start alone names, and sets something up. Where that is much, the start is a list.
void add_followers(Dispatch& dispatch, const std::map<FileId, HandlerSign>& handlers,
                   FileId start) {
  const std::vector<FileId>& roots = dispatch.roots.files();
  const NamingGraph& graph = dispatch.graph;
  std::map<FileId, std::uint32_t> followers;
  for (const Naming& naming : graph.from(start)) {
    const bool only = graph.to(naming.to).size() == 1 && naming.names;
    if (!only || !dispatch.evidence.is_product(naming.to)) continue;
    if (std::ranges::binary_search(roots, naming.to)) continue;
    if (lists_others(graph, roots, handlers, naming.to)) continue;
    if (graph.from(naming.to).size() >= kSetsUp) followers.emplace(naming.to, naming.line);
  }
  if (followers.size() > kMostFollowers) return;
  for (const auto& [file, line] : followers) {
    dispatch.sheet.add(file, kFollows, 1, {{std::string(dispatch.evidence.path(start)), line, {}}});
  }
}

}  // namespace

void add_starts(Dispatch& dispatch, const std::map<FileId, HandlerSign>& handlers) {
  const CodeEvidence& evidence = dispatch.evidence;
  const std::vector<FileId>& roots = dispatch.roots.files();
  std::vector<Start> starts = starts_of(evidence, roots);
  const std::string_view folder = common_folder(evidence, roots);
  keep_around_pages(evidence, folder, starts);
  keep_of_parts(evidence, roots, starts);
  keep_nearest(evidence, folder, starts);
  leave_out_crowds(starts);
  const bool alone = dispatch.hubs.empty();
  for (const Start& start : starts) {
    if (lists_others(dispatch.graph, roots, handlers, start.file)) continue;
    const auto named = static_cast<std::uint64_t>(
        std::ranges::count_if(dispatch.graph.from(start.file),
                              [&](const Naming& to) { return evidence.is_product(to.to); }));
    // One that knows the product sets it up; one that knows nothing of it hands on to one that
    // does.
    dispatch.sheet.add(start.file, alone ? kStart : kStartToo, std::max<std::uint64_t>(1, named),
                       {}, std::string(start.framework));
    dispatch.lead(start.file, {roots.begin(), roots.end()});
    if (alone) add_followers(dispatch, handlers, start.file);
  }
}

}  // namespace kestrix
