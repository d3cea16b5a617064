#pragma once

#include <functional>
#include <mutex>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/index/index.h"
#include "kestrix/index/repository.h"

namespace kestrix {

/// The index as the detectors see it: what it holds, and the components that its folders show.
class RepositoryHandle : public Repository {
 public:
  /// `index` must outlive the handle.
  explicit RepositoryHandle(const index::RepositoryIndex& index) : index_(index) {}
  /// `contracts` tells the types that the product implements. They are found among the interfaces,
  /// whatever their keyword, and their files are of the domain layer.
  using Contracts = std::function<std::vector<index::DeclarationRef>()>;
  RepositoryHandle(const index::RepositoryIndex& index, Contracts contracts)
      : index_(index), contracts_(std::move(contracts)) {}

  SymbolSearch search_symbols(std::string_view pattern, SymbolSearchOptions options) const override;
  SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const override;
  std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const override;
  FileGraph graph_among(std::span<const std::string_view> paths) const override;
  /// Those of the sources alone, which every page asks for, are found once.
  std::vector<Component> get_all_components(ComponentOptions options) const override;

 private:
  std::vector<Component> components_among(bool source_only) const;
  void add_contracts(std::span<const std::string_view> patterns, SymbolSearchOptions options,
                     SymbolSearch& found) const;

  const index::RepositoryIndex& index_;
  Contracts contracts_;
  mutable std::once_flag once_;
  mutable std::vector<Component> of_sources_;
};

}  // namespace kestrix
