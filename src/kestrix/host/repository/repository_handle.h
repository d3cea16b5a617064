#pragma once

#include "kestrix/index/index.h"
#include "kestrix/index/repository.h"

namespace kestrix {

/// The index as the detectors see it: what it holds, and the components that its folders show.
class RepositoryHandle : public Repository {
 public:
  /// `index` must outlive the handle.
  explicit RepositoryHandle(const index::RepositoryIndex& index) : index_(index) {}

  SymbolSearch search_symbols(std::string_view pattern, SymbolSearchOptions options) const override;
  SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const override;
  std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const override;
  FileGraph graph_among(std::span<const std::string_view> paths) const override;
  /// Found anew at each call, which looks at every path.
  std::vector<Component> get_all_components(ComponentOptions options) const override;

 private:
  const index::RepositoryIndex& index_;
};

}  // namespace kestrix
