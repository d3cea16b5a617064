#pragma once

#include <string>
#include <vector>

#include "bench/component/world.h"
#include "kestrix/workers/wiki/page_sources.h"

namespace kestrix::bench {

/// An index in memory: every second file defines a class, every tenth of them an exception, every
/// hundredth file a registry.
class MemoryIndex : public Repository {
 public:
  explicit MemoryIndex(World world);

  SymbolSearch search_symbols(std::string_view pattern, SymbolSearchOptions options) const override;
  SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const override;
  std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const override;
  FileGraph graph_among(std::span<const std::string_view> paths) const override;
  std::vector<Component> get_all_components(ComponentOptions options) const override;

  const World& world() const { return world_; }

 private:
  World world_;
  std::vector<Symbol> classes_;
  std::vector<Symbol> exceptions_;
  std::vector<Symbol> registries_;
};

class MemoryHost : public PageSourcesMixin {
 public:
  explicit MemoryHost(World world) : index_(std::move(world)) {}

  const Repository& repository() const override { return index_; }
  const RepoRoot& repo_root() const override { return root_; }
  std::vector<SourceFileRecord> _source_files() const override;
  std::vector<std::string> _planner_paths() const override { return index_.world().files; }
  std::vector<DocumentRecord> _indexed_documents() const override;

 private:
  MemoryIndex index_;
  RepoRoot root_{"/repository"};
};

}  // namespace kestrix::bench
