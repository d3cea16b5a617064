#include "kestrix/host/flows/starts.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "kestrix/languages/frameworks.h"
#include "kestrix/text/wildmatch.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr Signal kStart{"framework_start", 5.0, "is where such a product starts",
                        "is where such products start", "eShopOnWeb, BookStack"};

constexpr Signal kStartToo{"framework_start", 3.0, "is where such a product starts",
                           "is where such products start", "BookStack, lobsters"};

// The folder that all of them lie in.
std::string_view common_folder(const CodeEvidence& evidence, const std::vector<FileId>& files) {
  std::string_view folder = directory_of(evidence.path(files.front()));
  for (const FileId file : files) {
    const std::string_view path = evidence.path(file);
    while (!folder.empty() && !(path.starts_with(folder) && path.size() > folder.size() &&
                                path[folder.size()] == '/')) {
      folder = directory_of(folder);
    }
  }
  return folder;
}

bool lies_in(std::string_view path, std::string_view folder) {
  return folder.empty() ||
         (path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/');
}

}  // namespace

void add_starts(ScoreSheet& sheet, const CodeEvidence& evidence, const std::vector<FileId>& roots,
                bool alone) {
  const auto files = evidence.index().files();
  const std::string_view language = files[roots.front()].language;
  std::vector<std::pair<index::Wildmatch, std::string_view>> patterns;
  for (const auto& row : index::framework_names(language)) {
    if (row.known == index::Known::kStartPath)
      patterns.emplace_back(index::Wildmatch(row.name), row.framework);
  }
  if (patterns.empty()) return;
  const std::set<FileId> taken(roots.begin(), roots.end());
  std::vector<std::pair<FileId, std::string_view>> starts;
  for (FileId file = 0; file < files.size(); ++file) {
    if (!evidence.is_product(file) || taken.contains(file)) continue;
    for (const auto& [pattern, framework] : patterns) {
      if (!pattern.matches(files[file].path)) continue;
      starts.emplace_back(file, framework);
      break;
    }
  }
  // The start of the part that the entry points lie in; of the whole where that has none.
  for (std::string_view folder = common_folder(evidence, roots);; folder = directory_of(folder)) {
    bool any = false;
    for (const auto& [file, framework] : starts) {
      if (!lies_in(files[file].path, folder)) continue;
      any = true;
      sheet.add(file, alone ? kStart : kStartToo, 1, {}, std::string(framework));
    }
    if (any || folder.empty()) return;
  }
}

}  // namespace kestrix
