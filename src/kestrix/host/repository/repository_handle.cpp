#include "kestrix/host/repository/repository_handle.h"

#include <algorithm>
#include <set>

#include "kestrix/host/components.h"
#include "kestrix/utils/path_filter.h"
#include "kestrix/workers/project_units.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki_types.h"

namespace kestrix {
namespace {

bool is_production(const index::IndexedFile& file) {
  return !file.document && !is_test_path(file.path);
}

}  // namespace

SymbolSearch RepositoryHandle::search_symbols(std::string_view pattern,
                                              SymbolSearchOptions options) const {
  return search_symbols(std::span(&pattern, 1), options);
}

SymbolSearch RepositoryHandle::search_symbols(std::span<const std::string_view> patterns,
                                              SymbolSearchOptions options) const {
  SymbolSearch found = index_.search_symbols(patterns, options);
  if (options.kind == SymbolKind::kInterface) add_contracts(patterns, options, found);
  return found;
}

// The classes that are contracts come behind the interfaces, in the order of their ids.
void RepositoryHandle::add_contracts(std::span<const std::string_view> patterns,
                                     SymbolSearchOptions options, SymbolSearch& found) const {
  if (!contracts_ || std::ranges::find(patterns, "%") == patterns.end()) return;
  const auto symbols = index_.symbols();
  for (const index::DeclarationRef contract : contracts_()) {
    const auto& declared = index_.declarations()[contract];
    const auto first =
        std::ranges::lower_bound(symbols, contract.file, {}, &index::IndexedSymbol::file);
    for (auto symbol = first; symbol != symbols.end() && symbol->file == contract.file; ++symbol) {
      if (symbol->kind != SymbolKind::kClass || symbol->name != declared.name) continue;
      if (search(INTERFACE_SIGNATURE_RE, symbol->signature)) break;  // known for what it is
      ++found.total;
      if (found.symbols.size() < options.limit) {
        found.symbols.push_back({symbol - symbols.begin() + 1, std::string(symbol->name),
                                 std::string(symbol->signature)});
      }
      break;
    }
  }
  found.truncated = found.total > std::ssize(found.symbols);
}

std::unordered_map<SymbolId, std::string> RepositoryHandle::get_file_paths_batch(
    std::span<const Symbol> symbols) const {
  return index_.get_file_paths_batch(symbols);
}

FileGraph RepositoryHandle::graph_among(std::span<const std::string_view> paths) const {
  return index_.graph_among(paths);
}

std::vector<Component> RepositoryHandle::get_all_components(ComponentOptions options) const {
  if (!options.source_only) return components_among(false);
  std::call_once(once_, [this] { of_sources_ = components_among(true); });
  return of_sources_;
}

std::vector<Component> RepositoryHandle::components_among(bool source_only) const {
  std::vector<std::string> paths;
  for (const auto& file : index_.files()) {
    if (!source_only || is_production(file)) paths.emplace_back(file.path);
  }
  std::vector<Component> components = components_of(paths);
  if (contracts_) {
    std::set<std::string> patterns;
    for (const index::DeclarationRef contract : contracts_()) {
      patterns.insert(pattern_of_root(index_.files()[contract.file].path));
    }
    for (const std::string& pattern : patterns) {
      components.push_back({std::string(DOMAIN_LAYER), pattern});
    }
  }
  return components;
}

}  // namespace kestrix
