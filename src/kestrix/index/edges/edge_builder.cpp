#include "kestrix/index/edges/edge_builder.h"

#include <algorithm>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/index/edges/reference_builder.h"
#include "kestrix/index/names/scopes.h"
#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/edge_codec.h"
#include "kestrix/utils/workers.h"

namespace kestrix::index {
namespace {

using FileIds = std::vector<FileId>;

struct FileEdges {
  FileId file;
  std::string edges;  // encoded, ascending by target
  std::string references;
  std::uint32_t unresolved;
  bool limited;
};

// An import says more than a name, and a name more than a string: the weight is that of the best
// evidence alone.
std::string merge(const IndexedFiles& files, FileId source,
                  std::span<const Dependency> dependencies,
                  std::span<const ReferenceBuilder::Use> uses) {
  std::map<std::int64_t, StoredEdge> edges;
  const auto add = [&](FileId target, double weight, EdgeEvidence evidence) {
    if (target == source || target >= files.size()) return;
    const std::int64_t row = files.row(target).id;
    StoredEdge& edge = edges.try_emplace(row, StoredEdge{row, 0, evidence}).first->second;
    if (edge.evidence == evidence) edge.weight += weight;
  };
  for (const auto& found : dependencies) add(found.target, found.weight, EdgeEvidence::kImport);
  for (const auto& use : uses) {
    if (!use.string) add(use.target, use.count, EdgeEvidence::kReference);
  }
  for (const auto& use : uses) {
    if (use.string) add(use.target, use.count, EdgeEvidence::kString);
  }
  std::vector<StoredEdge> merged;
  merged.reserve(edges.size());
  for (const auto& [target, edge] : edges) merged.push_back(edge);
  return encode_edges(merged);
}

// The declarations of all files, as they are stored.
void load(Store& store, const IndexedFiles& files, DeclarationTable& table) {
  std::unordered_map<std::int64_t, FileId> by_row;
  by_row.reserve(files.size());
  for (FileId id = 0; id < files.size(); ++id) by_row.emplace(files.row(id).id, id);
  store.each_declarations([&](std::int64_t row, std::string_view bytes) {
    const auto found = by_row.find(row);
    if (found == by_row.end()) throw CorruptIndex("declarations without a file");
    table.add(found->second, bytes);
  });
}

class EdgeBuild {
 public:
  EdgeBuild(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options)
      : store_(store), files_(files), options_(options), scopes_(files), table_(files.size()) {
    load(store, files, table_);
    builder_.emplace(files, scopes_, table_);
  }

  void run_all() {
    store_.each_edges(
        [&](std::int64_t source, std::string_view edges) { old_.emplace(source, edges); });
    store_.each_references([&](std::int64_t source, std::string_view references) {
      old_references_.emplace(source, references);
    });
    FileIds all(files_.size());
    std::ranges::generate(all, [id = FileId{0}]() mutable { return id++; });
    run(all);
    // What is left belongs to files that have no facts any more.
    for (const auto& [source, edges] : old_) store_.put_edges(source, {});
    for (const auto& [source, references] : old_references_) store_.put_references(source, {});
    mark_consulted(true);
  }

  void run(std::span<const FileId> sources) {
    FileIds covered;
    for (const FileId id : sources) {
      if (scopes_.covers(id)) covered.push_back(id);
    }
    resolve(covered);
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
  void resolve(const FileIds& ids) {
    Workers<std::vector<FileEdges>> workers(options_.threads, options_.stop);
    const std::size_t chunks = (ids.size() + kChunk - 1) / kChunk;
    // Nothing is written before the last has resolved: facts may still come out of the store.
    std::vector<std::vector<FileEdges>> results;
    workers.run(
        chunks, [&](std::size_t chunk) { return resolve_chunk(ids, chunk); },
        [&](std::vector<FileEdges> resolved) { results.push_back(std::move(resolved)); });
    for (const auto& resolved : results) {
      for (const FileEdges& file : resolved) take(file);
    }
  }

  std::vector<FileEdges> resolve_chunk(const FileIds& ids, std::size_t chunk) const {
    std::vector<FileEdges> resolved;
    const std::size_t end = std::min(ids.size(), (chunk + 1) * kChunk);
    for (std::size_t at = chunk * kChunk; at < end; ++at) {
      check_stop(options_.stop);
      const Resolution& found = scopes_.of(ids[at]);
      auto built = builder_->build(ids[at]);
      resolved.push_back({ids[at], merge(files_, ids[at], found.dependencies, built.uses),
                          encode_references(std::move(built.references)), found.unresolved,
                          found.limited || built.limited});
    }
    return resolved;
  }

  void take(const FileEdges& file) {
    FileRow& row = files_.row(file.file);
    const bool limited = row.traits.has(Trait::kEntangled);
    if (row.unresolved != file.unresolved || limited != file.limited) {
      row.unresolved = file.unresolved;
      row.traits.set(Trait::kEntangled, file.limited);
      store_.put_file(row);
    }
    const auto edges = old_.extract(row.id);
    if (edges.empty() ? !file.edges.empty() : edges.mapped() != file.edges) {
      store_.put_edges(row.id, file.edges);
    }
    const auto references = old_references_.extract(row.id);
    if (references.empty() ? !file.references.empty() : references.mapped() != file.references) {
      store_.put_references(row.id, file.references);
    }
  }

  static constexpr std::size_t kChunk = 32;

  Store& store_;
  const IndexedFiles& files_;
  const EdgeBuildOptions& options_;
  Scopes scopes_;
  DeclarationTable table_;
  std::optional<ReferenceBuilder> builder_;
  std::unordered_map<std::int64_t, std::string> old_;  // encoded, by source
  std::unordered_map<std::int64_t, std::string> old_references_;
};

}  // namespace

void rebuild_edges(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options) {
  EdgeBuild(store, files, options).run_all();
}

void rebuild_edges_of(std::span<const FileId> sources, Store& store, const IndexedFiles& files,
                      const EdgeBuildOptions& options) {
  for (const FileId id : sources) {
    store.put_edges(files.row(id).id, {});
    store.put_references(files.row(id).id, {});
  }
  EdgeBuild build(store, files, options);
  build.run(sources);
  build.mark_consulted(false);
}

}  // namespace kestrix::index
