#include "kestrix/index/edge_builder.h"

#include <algorithm>
#include <map>
#include <memory>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/index/language.h"
#include "kestrix/index/workers.h"

namespace kestrix::index {
namespace {

using FileIds = std::vector<FileId>;

// Languages that share a resolver are resolved together, so that it is built once.
std::vector<std::pair<ResolverFactory, FileIds>> group_by_resolver(const IndexedFiles& files) {
  std::vector<std::pair<ResolverFactory, FileIds>> groups;
  for (FileId id = 0; id < files.size(); ++id) {
    if (!files.is_parsed(id)) continue;
    const Language* language = language_named(files.language(id));
    if (language == nullptr || language->resolver == nullptr) continue;
    auto group =
        std::ranges::find(groups, language->resolver, &std::pair<ResolverFactory, FileIds>::first);
    if (group == groups.end()) group = groups.insert(groups.end(), {language->resolver, {}});
    group->second.push_back(id);
  }
  return groups;
}

struct FileEdges {
  FileId file;
  std::vector<EdgeRow> edges;  // ascending by target
  std::uint32_t unresolved;
};

std::vector<EdgeRow> merge(const IndexedFiles& files, FileId source,
                           std::span<const Dependency> dependencies) {
  std::map<std::int64_t, double> weights;
  for (const Dependency& dependency : dependencies) {
    if (dependency.target == source || dependency.target >= files.size()) continue;
    weights[files.row(dependency.target).id] += dependency.weight;
  }
  std::vector<EdgeRow> edges;
  edges.reserve(weights.size());
  for (const auto& [target, weight] : weights) edges.push_back({target, weight});
  return edges;
}

class EdgeBuild {
 public:
  EdgeBuild(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options)
      : store_(store), files_(files), options_(options) {
    store.each_edge(
        [&](std::int64_t source, const EdgeRow& edge) { old_[source].push_back(edge); });
  }

  void run() {
    for (const auto& [factory, ids] : group_by_resolver(files_)) resolve(factory, ids);
    // What is left belongs to files that have no facts any more.
    for (const auto& [source, edges] : old_) store_.put_edges(source, {});
    clear_unresolved();
  }

 private:
  void resolve(ResolverFactory factory, const FileIds& ids) {
    check_stop(options_.stop);
    const std::unique_ptr<Resolver> resolver = factory(files_);
    Workers<std::vector<FileEdges>> workers(thread_count(options_.threads), options_.stop);
    const std::size_t chunks = (ids.size() + kChunk - 1) / kChunk;
    workers.run(
        chunks, [&](std::size_t chunk) { return resolve_chunk(*resolver, ids, chunk); },
        [&](const std::vector<FileEdges>& resolved) {
          for (const FileEdges& file : resolved) take(file);
        });
  }

  std::vector<FileEdges> resolve_chunk(const Resolver& resolver, const FileIds& ids,
                                       std::size_t chunk) const {
    std::vector<FileEdges> resolved;
    const std::size_t end = std::min(ids.size(), (chunk + 1) * kChunk);
    for (std::size_t at = chunk * kChunk; at < end; ++at) {
      check_stop(options_.stop);
      const Resolution found = resolver.resolve(ids[at]);
      resolved.push_back({ids[at], merge(files_, ids[at], found.dependencies), found.unresolved});
    }
    return resolved;
  }

  void take(const FileEdges& file) {
    const FileRow& row = files_.row(file.file);
    if (row.unresolved != file.unresolved) store_.set_unresolved(row.id, file.unresolved);
    const auto old = old_.find(row.id);
    const bool same = old == old_.end() ? file.edges.empty() : old->second == file.edges;
    if (!same) store_.put_edges(row.id, file.edges);
    if (old != old_.end()) old_.erase(old);
  }

  void clear_unresolved() {
    for (FileId id = 0; id < files_.size(); ++id) {
      const FileRow& row = files_.row(id);
      if (!files_.is_parsed(id) && row.unresolved != 0) store_.set_unresolved(row.id, 0);
    }
  }

  static constexpr std::size_t kChunk = 32;

  Store& store_;
  const IndexedFiles& files_;
  const EdgeBuildOptions& options_;
  std::unordered_map<std::int64_t, std::vector<EdgeRow>> old_;  // by source, ascending by target
};

}  // namespace

void rebuild_edges(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options) {
  EdgeBuild(store, files, options).run();
}

}  // namespace kestrix::index
