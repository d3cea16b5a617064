#include "kestrix/index/edge_builder.h"

#include <algorithm>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/index/workers.h"
#include "kestrix/languages/language.h"
#include "kestrix/store/edge_codec.h"

namespace kestrix::index {
namespace {

using FileIds = std::vector<FileId>;

struct Group {
  ResolverFactory resolver;
  FileIds files;
};

// Languages that share a resolver are resolved together, so that it is built once.
std::vector<Group> group_by_resolver(const IndexedFiles& files, std::span<const FileId> sources) {
  std::vector<Group> groups;
  for (const FileId id : sources) {
    if (!files.row(id).traits.has(Trait::kParsed)) continue;
    const Language* language = language_named(files.language(id));
    if (language == nullptr || language->resolver == nullptr) continue;
    auto group = std::ranges::find(groups, language->resolver, &Group::resolver);
    if (group == groups.end()) group = groups.insert(groups.end(), {language->resolver, {}});
    group->files.push_back(id);
  }
  return groups;
}

struct FileEdges {
  FileId file;
  std::string edges;  // encoded, ascending by target
  std::uint32_t unresolved;
};

std::string merge(const IndexedFiles& files, FileId source,
                  std::span<const Dependency> dependencies) {
  std::map<std::int64_t, double> weights;
  for (const Dependency& dependency : dependencies) {
    if (dependency.target == source || dependency.target >= files.size()) continue;
    weights[files.row(dependency.target).id] += dependency.weight;
  }
  std::vector<StoredEdge> edges;
  edges.reserve(weights.size());
  for (const auto& [target, weight] : weights) edges.push_back({target, weight});
  return encode_edges(edges);
}

class EdgeBuild {
 public:
  EdgeBuild(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options)
      : store_(store), files_(files), options_(options) {}

  void run_all() {
    store_.each_edges(
        [&](std::int64_t source, std::string_view edges) { old_.emplace(source, edges); });
    FileIds all(files_.size());
    std::ranges::generate(all, [id = FileId{0}]() mutable { return id++; });
    run(all);
    // What is left belongs to files that have no facts any more.
    for (const auto& [source, edges] : old_) store_.put_edges(source, {});
    mark_consulted(true);
  }

  void run(std::span<const FileId> sources) {
    for (const Group& group : group_by_resolver(files_, sources)) resolve(group);
  }

  // Files that resolvers have read: when one changes, all may resolve otherwise.
  void mark_consulted(bool unmark) {
    for (FileId id = 0; id < files_.size(); ++id) {
      FileRow& row = files_.row(id);
      const bool marked = row.traits.has(Trait::kConsulted);
      if (files_.was_read(id) == marked || (marked && !unmark)) continue;
      row.traits.set(Trait::kConsulted, !marked);
      store_.put_file(row);
    }
  }

 private:
  void resolve(const Group& group) {
    check_stop(options_.stop);
    const std::unique_ptr<Resolver> resolver = group.resolver(files_);
    Workers<std::vector<FileEdges>> workers(options_.threads, options_.stop);
    const std::size_t chunks = (group.files.size() + kChunk - 1) / kChunk;
    // Nothing is written before the last has resolved: facts may still come out of the store.
    std::vector<std::vector<FileEdges>> results;
    workers.run(
        chunks, [&](std::size_t chunk) { return resolve_chunk(*resolver, group.files, chunk); },
        [&](std::vector<FileEdges> resolved) { results.push_back(std::move(resolved)); });
    for (const auto& resolved : results) {
      for (const FileEdges& file : resolved) take(file);
    }
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
    FileRow& row = files_.row(file.file);
    if (row.unresolved != file.unresolved) {
      row.unresolved = file.unresolved;
      store_.put_file(row);
    }
    const auto old = old_.extract(row.id);
    if (old.empty() ? file.edges.empty() : old.mapped() == file.edges) return;
    store_.put_edges(row.id, file.edges);
  }

  static constexpr std::size_t kChunk = 32;

  Store& store_;
  const IndexedFiles& files_;
  const EdgeBuildOptions& options_;
  std::unordered_map<std::int64_t, std::string> old_;  // encoded, by source
};

}  // namespace

void rebuild_edges(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options) {
  EdgeBuild(store, files, options).run_all();
}

void rebuild_edges_of(std::span<const FileId> sources, Store& store, const IndexedFiles& files,
                      const EdgeBuildOptions& options) {
  for (const FileId id : sources) store.put_edges(files.row(id).id, {});
  EdgeBuild build(store, files, options);
  build.run(sources);
  build.mark_consulted(false);
}

}  // namespace kestrix::index
