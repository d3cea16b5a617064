#include "kestrix/workers/report_generator.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <typeinfo>

#include "kestrix/index/index.h"
#include "kestrix/utils/error.h"

namespace kestrix {
namespace {

using index::FileId;
using index::RepositoryIndex;

const RepositoryIndex& native(const Repository& repository) {
  const auto* index = dynamic_cast<const RepositoryIndex*>(&repository);
  if (index == nullptr) throw Error("cluster_inputs: the repository is no index of this host");
  return *index;
}

std::vector<FileId> known_files(const RepositoryIndex& index, const PathSet& paths) {
  std::vector<FileId> files;
  for (const std::string& path : paths) {
    if (const auto id = index.find(path)) files.push_back(*id);
  }
  std::ranges::sort(files);
  return files;
}

std::string directory_of(std::string_view path) {
  const auto slash = path.rfind('/');
  return std::string(slash == path.npos ? "" : path.substr(0, slash));
}

}  // namespace

ClusterInputs cluster_inputs(const Repository& repository, const PathSet& paths) {
  const RepositoryIndex& index = native(repository);
  const auto path_of = [&](FileId id) { return index.files()[id].path; };
  ClusterInputs inputs;
  std::vector<bool> wanted(index.files().size());
  const std::vector<FileId> files = known_files(index, paths);
  std::set<std::string> units;
  for (const FileId file : files) {
    wanted[file] = true;
    inputs.files.emplace_back(path_of(file));
    units.insert(directory_of(path_of(file)));
  }
  inputs.units.assign(units.begin(), units.end());
  for (const FileId file : files) {
    for (const index::IndexedEdge& edge : index.edges_from(file)) {
      if (!wanted[edge.target]) continue;
      inputs.edges.push_back({path_of(edge.source), path_of(edge.target), edge.weight});
    }
  }
  return inputs;
}

}  // namespace kestrix
