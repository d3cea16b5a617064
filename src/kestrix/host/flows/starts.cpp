#include "kestrix/host/flows/starts.h"

#include <algorithm>
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
    if (matching != patterns.end()) starts.push_back({file, matching->name, matching->framework});
  }
  return starts;
}

std::size_t below(const CodeEvidence& evidence, FileId start, const std::vector<FileId>& roots) {
  const std::string_view folder = directory_of(evidence.path(start));
  return static_cast<std::size_t>(std::ranges::count_if(
      roots, [&](FileId root) { return lies_in(evidence.path(root), folder); }));
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
  const auto files = evidence.index().files();
  const std::string_view language = files[roots.front()].language;
  const auto add = [&](const Start& start) {
    // What renders pages starts nothing that does not.
    if (files[start.file].language == kPages && language != kPages) return;
    // One that knows the product sets it up; one that knows nothing of it hands on to one that
    // does.
    const auto named = std::ranges::count_if(graph.from(start.file), [&](const Naming& naming) {
      return evidence.is_product(naming.to);
    });
    sheet.add(start.file, alone ? kStart : kStartToo,
              std::max<std::uint64_t>(1, static_cast<std::uint64_t>(named)), {},
              std::string(start.framework));
  };
  std::vector<Start> starts = starts_of(evidence, roots);
  keep_of_parts(evidence, roots, starts);
  // The start of the part that the entry points lie in; of the whole where that has none.
  bool any = false;
  for (std::string_view folder = common_folder(evidence, roots); !any;
       folder = directory_of(folder)) {
    for (const Start& start : starts) {
      if (!lies_in(files[start.file].path, folder)) continue;
      any = true;
      add(start);
    }
    if (folder.empty()) return;
  }
}

}  // namespace kestrix
