#include "kestrix/host/flows/folders.h"

#include <algorithm>
#include <string>

#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {

using index::FileId;

bool lies_in(std::string_view path, std::string_view folder) {
  return folder.empty() ||
         (path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/');
}

std::string_view common_folder(const CodeEvidence& evidence, const std::vector<FileId>& files) {
  std::string_view folder = directory_of(evidence.path(files.front()));
  for (const FileId file : files) {
    while (!lies_in(evidence.path(file), folder)) folder = directory_of(folder);
  }
  return folder;
}

std::vector<FileId> files_in(const CodeEvidence& evidence, std::string_view folder) {
  const auto files = evidence.index().files();
  const std::string first = folder.empty() ? std::string() : std::string(folder) + '/';
  const auto begin =
      std::ranges::lower_bound(files, std::string_view(first), {}, &index::IndexedFile::path);
  std::vector<FileId> found;
  for (auto at = begin; at != files.end() && at->path.starts_with(first); ++at) {
    if (directory_of(at->path) == folder) found.push_back(static_cast<FileId>(at - files.begin()));
  }
  return found;
}

}  // namespace kestrix
