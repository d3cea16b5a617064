#include "kestrix/host/queries/edge_query.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "kestrix/host/path_glob.h"
#include "kestrix/utils/error.h"

namespace kestrix {
namespace {

// For each file whether one of the patterns takes it; with no pattern, each is taken.
std::vector<bool> selected(const index::RepositoryIndex& index,
                           const std::vector<std::string>& patterns) {
  std::vector<bool> taken(index.files().size(), patterns.empty());
  for (const std::string& pattern : patterns) {
    const PathGlob glob(pattern);
    for (std::size_t file = 0; file < taken.size(); ++file) {
      if (!taken[file]) taken[file] = glob.matches(index.files()[file].path);
    }
  }
  return taken;
}

FoundEdge found_edge(const index::RepositoryIndex& index, const index::IndexedEdge& edge) {
  return {std::string(index.files()[edge.source].path),
          std::string(index.files()[edge.target].path), edge.weight, 1};
}

index::FileId known(const index::RepositoryIndex& index, std::string_view path) {
  const auto file = index.find(path);
  if (!file) throw Error(fmt::format("{}: the index has no such file", path));
  return *file;
}

}  // namespace

std::vector<FoundEdge> find_edges(const index::RepositoryIndex& index, const EdgeQuery& query) {
  const auto sources = selected(index, query.from);
  const auto targets = selected(index, query.to);
  const auto both = selected(index, query.within);
  std::vector<FoundEdge> found;
  for (const auto& edge : index.edges()) {
    const bool wanted =
        sources[edge.source] && targets[edge.target] && both[edge.source] && both[edge.target];
    if (wanted) found.push_back(found_edge(index, edge));
  }
  return found;
}

std::vector<FoundEdge> shortest_way(const index::RepositoryIndex& index, std::string_view from,
                                    std::string_view to) {
  const index::FileId first = known(index, from);
  const index::FileId last = known(index, to);
  constexpr auto kUnseen = std::numeric_limits<std::size_t>::max();
  const auto edges = index.edges();
  std::vector<std::size_t> reached_by(index.files().size(), kUnseen);  // number of an edge
  std::vector<index::FileId> queue{first};
  for (std::size_t at = 0; at < queue.size() && reached_by[last] == kUnseen; ++at) {
    for (const auto& edge : index.edges_from(queue[at])) {
      if (edge.target == first || reached_by[edge.target] != kUnseen) continue;
      reached_by[edge.target] = static_cast<std::size_t>(&edge - edges.data());
      queue.push_back(edge.target);
    }
  }
  std::vector<FoundEdge> way;
  for (index::FileId file = last; file != first && reached_by[file] != kUnseen;) {
    const auto& edge = edges[reached_by[file]];
    way.push_back(found_edge(index, edge));
    file = edge.source;
  }
  std::ranges::reverse(way);
  return way;
}

std::string_view folder_of(std::string_view path, unsigned levels) {
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos) return ".";
  const auto folder = path.substr(0, slash);
  std::size_t end = 0;
  for (unsigned level = 0; level < levels; ++level) {
    end = folder.find('/', level == 0 ? 0 : end + 1);
    if (end == std::string_view::npos) return folder;
  }
  return levels == 0 ? folder : folder.substr(0, end);
}

std::vector<FoundEdge> sum_by_folder(const std::vector<FoundEdge>& edges, unsigned levels) {
  std::map<std::pair<std::string_view, std::string_view>, FoundEdge> sums;
  for (const FoundEdge& edge : edges) {
    const auto source = folder_of(edge.source, levels);
    const auto target = folder_of(edge.target, levels);
    if (source == target) continue;
    auto& sum = sums.try_emplace({source, target}, FoundEdge{{}, {}, 0, 0}).first->second;
    sum.weight += edge.weight;
    sum.edges += edge.edges;
  }
  std::vector<FoundEdge> summed;
  summed.reserve(sums.size());
  for (auto& [ends, sum] : sums) {
    summed.push_back({std::string(ends.first), std::string(ends.second), sum.weight, sum.edges});
  }
  return summed;
}

}  // namespace kestrix
