#include "bench/component/memory_host.h"

#include <algorithm>
#include <unordered_set>

namespace kestrix {
namespace bench {
namespace {

SymbolSearch listed(const std::vector<Symbol>& symbols, std::size_t limit) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(limit, symbols.size()));
  return {{symbols.begin(), symbols.begin() + count},
          static_cast<std::int64_t>(symbols.size()),
          limit < symbols.size()};
}

}  // namespace

MemoryIndex::MemoryIndex(World world) : world_(std::move(world)) {
  for (std::size_t i = 0; i < world_.files.size(); ++i) {
    const auto id = static_cast<SymbolId>(i + 1);
    const std::string base = i % 6 == 0 ? "(ABC)" : "(Base)";
    if (i % 2 == 0) classes_.push_back({id, "Thing", "class Thing" + base});
    if (i % 20 == 0) exceptions_.push_back({id, "ThingError", "class ThingError(Exception)"});
    if (i % 100 == 0) registries_.push_back({id, "THING_REGISTRY", "THING_REGISTRY = {}"});
  }
}

SymbolSearch MemoryIndex::search_symbols(std::string_view pattern,
                                         SymbolSearchOptions options) const {
  if (options.kind != SymbolKind::kClass) return {};
  return listed(pattern == "%" ? classes_ : exceptions_, options.limit);
}

SymbolSearch MemoryIndex::search_symbols(std::span<const std::string_view> /*patterns*/,
                                         SymbolSearchOptions options) const {
  if (options.kind == SymbolKind::kClass) return listed(exceptions_, options.limit);
  return options.kind == SymbolKind::kConstant ? listed(registries_, options.limit)
                                               : SymbolSearch{};
}

std::unordered_map<SymbolId, std::string> MemoryIndex::get_file_paths_batch(
    std::span<const Symbol> symbols) const {
  std::unordered_map<SymbolId, std::string> paths;
  for (const Symbol& symbol : symbols) {
    paths.try_emplace(symbol.id, world_.files[static_cast<std::size_t>(symbol.id - 1)]);
  }
  return paths;
}

std::vector<Component> MemoryIndex::get_all_components(ComponentOptions /*options*/) const {
  return {{"domain", "src/product/services/**"}};
}

FileGraph MemoryIndex::graph_among(std::span<const std::string_view> paths) const {
  const std::unordered_set<std::string_view> known(paths.begin(), paths.end());
  FileGraph graph;
  std::ranges::copy_if(world_.edges, std::back_inserter(graph.edges), [&](const FileEdge& edge) {
    return known.contains(edge.source) && known.contains(edge.target);
  });
  return graph;
}

std::vector<SourceFileRecord> MemoryHost::_source_files() const {
  std::vector<SourceFileRecord> records;
  for (const auto& path : index_.world().files) records.push_back({path});
  for (const auto& path : index_.world().tests) records.push_back({path});
  return records;
}

std::vector<DocumentRecord> MemoryHost::_indexed_documents() const {
  std::vector<DocumentRecord> records;
  for (const auto& path : index_.world().files) records.push_back({path});
  return records;
}

}  // namespace bench

std::string _norm(std::string_view path) { return std::string(path); }
Text _read_text(const RepoPath& /*path*/, ReadTextOptions /*options*/) { return {}; }
bool is_test_path(std::string_view path) { return path.starts_with("tests/"); }
std::string stem(std::string_view path) { return std::string(path.substr(path.rfind('/') + 1)); }
std::vector<std::string> data_model_files(const PathTexts& /*texts*/) { return {}; }
std::vector<std::string> decision_docs(const std::vector<std::string>& documents, std::size_t) {
  return documents;
}

std::vector<std::string> extension_files(const PathCounts& contracts, const PathCounts& registries,
                                         std::size_t limit) {
  std::vector<std::string> files;
  for (const PathCounts* counts : {&contracts, &registries}) {
    for (const auto& [path, count] : *counts) {
      if (files.size() < limit) files.push_back(path);
    }
  }
  return files;
}

std::optional<std::string> root_of_pattern(std::string_view pattern) {
  return std::string(pattern.substr(0, pattern.find("/**")));
}

std::optional<std::string> most_specific(const RootMap& roots, std::string_view path) {
  for (const auto& [root, value] : roots) {
    if (path.starts_with(root)) return value;
  }
  return std::nullopt;
}

ClusterInputs cluster_inputs(const Repository& repository, const PathSet& paths) {
  const std::vector<std::string_view> views(paths.begin(), paths.end());
  ClusterInputs inputs;
  inputs.edges = repository.graph_among(views).edges;
  return inputs;
}

bool search(const InterfaceSignaturePattern& /*pattern*/, std::string_view signature) {
  return signature.find("ABC") != std::string_view::npos;
}

AspectFileLimit::operator std::ptrdiff_t() const { return 12; }
void note_absorbed(const std::string& /*label*/, const std::exception& /*error*/) noexcept {}
void Logger::warning(std::string_view /*message*/, const Failure& /*failure*/) const noexcept {}

}  // namespace kestrix
