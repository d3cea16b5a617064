#include "kestrix/host/flows/starts.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "kestrix/host/flows/folders.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/roles/path_roles.h"
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
// So many of the entry points lie below a start that is for a part of them.
constexpr std::size_t kPartShare = 4;
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
  Roles roles = path_roles(evidence.path(file));
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

// Where there is one for each part of the product, those of the parts that hold entry points.
void keep_of_parts(const CodeEvidence& evidence, const std::vector<FileId>& roots,
                   std::vector<Start>& starts) {
  std::set<std::string_view> by_part;
  for (const Start& start : starts) {
    if (below(evidence, start.file, roots) > 0) by_part.insert(start.name);
  }
  std::erase_if(starts, [&](const Start& start) {
    const std::size_t held = below(evidence, start.file, roots);
    return by_part.contains(start.name) && held * kPartShare < roots.size();
  });
}

}  // namespace

void add_starts(ScoreSheet& sheet, const CodeEvidence& evidence, const NamingGraph& graph,
                const std::vector<FileId>& roots, bool alone) {
  std::vector<Start> starts = starts_of(evidence, roots);
  keep_of_parts(evidence, roots, starts);
  keep_nearest(evidence, common_folder(evidence, roots), starts);
  std::map<FileId, std::vector<Place>> followers;
  for (const Start& start : starts) {
    // One that knows the product sets it up; one that knows nothing of it hands on to one that
    // does.
    std::uint64_t named = 0;
    for (const Naming& naming : graph.from(start.file)) {
      if (!evidence.is_product(naming.to)) continue;
      ++named;
      const bool only = graph.to(naming.to).size() == 1 && naming.names;
      if (!only || graph.from(naming.to).size() < kSetsUp) continue;
      followers[naming.to].push_back({std::string(evidence.path(start.file)), naming.line, {}});
    }
    const Signal& signal = alone ? kStart : kStartToo;
    sheet.add(start.file, signal, std::max<std::uint64_t>(1, named), {},
              std::string(start.framework));
  }
  for (auto& [file, at] : followers) {
    if (alone && !std::ranges::binary_search(roots, file)) sheet.add(file, kFollows, 1, at);
  }
}

}  // namespace kestrix
