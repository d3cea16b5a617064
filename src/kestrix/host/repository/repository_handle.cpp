#include "kestrix/host/repository/repository_handle.h"

#include "kestrix/host/components.h"
#include "kestrix/utils/path_filter.h"

namespace kestrix {
namespace {

bool is_production(const index::IndexedFile& file) {
  return !file.document && !is_test_path(file.path);
}

}  // namespace

SymbolSearch RepositoryHandle::search_symbols(std::string_view pattern,
                                              SymbolSearchOptions options) const {
  return index_.search_symbols(pattern, options);
}

SymbolSearch RepositoryHandle::search_symbols(std::span<const std::string_view> patterns,
                                              SymbolSearchOptions options) const {
  return index_.search_symbols(patterns, options);
}

std::unordered_map<SymbolId, std::string> RepositoryHandle::get_file_paths_batch(
    std::span<const Symbol> symbols) const {
  return index_.get_file_paths_batch(symbols);
}

FileGraph RepositoryHandle::graph_among(std::span<const std::string_view> paths) const {
  return index_.graph_among(paths);
}

std::vector<Component> RepositoryHandle::get_all_components(ComponentOptions options) const {
  std::vector<std::string> paths;
  for (const auto& file : index_.files()) {
    if (!options.source_only || is_production(file)) paths.emplace_back(file.path);
  }
  return components_of(paths);
}

}  // namespace kestrix
