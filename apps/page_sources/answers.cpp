#include "apps/page_sources/answers.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

#include "kestrix/host/entry_points.h"

namespace kestrix::program {
namespace {

std::vector<EntryPointClass> classes_of(const PageSourcesMixin& generator,
                                        std::span<const std::string> patterns) {
  const std::vector<std::string> paths = generator._planner_paths();
  if (patterns.empty()) {
    const auto edges = generator._file_edges({paths.begin(), paths.end()});
    return entry_point_classes(paths, edges);
  }
  std::vector<EntryPointClass> classes;
  for (const std::string& pattern : patterns) {
    classes.push_back(entry_points_matching(pattern, paths));
  }
  return classes;
}

std::vector<FlowClass> answer_flows(const PageSourcesMixin& generator,
                                    std::span<const std::string> patterns) {
  std::vector<FlowClass> flows;
  for (EntryPointClass& found : classes_of(generator, patterns)) {
    auto files = generator._flow_dispatch(found.roots);
    flows.push_back({std::move(found.name), std::move(found.roots), std::move(files)});
  }
  return flows;
}

PageAnswer answer_page(const PageSourcesMixin& generator, PageName page,
                       std::span<const std::string> entry_points) {
  switch (page) {
    case PageName::kDataModels:
      return {page, {}, generator._data_model_files(), {}};
    case PageName::kConfiguration:
      return {page, {}, generator._config_files(), {}};
    case PageName::kErrors:
      return {page, generator._has_exceptions(), generator._exception_files(), {}};
    case PageName::kFlows:
      return {page, {}, {}, answer_flows(generator, entry_points)};
    case PageName::kExtending:
      return {page, {}, generator._extension_files(), {}};
    case PageName::kExamples:
      return {page, {}, generator._example_files(), {}};
    case PageName::kDecisions:
      return {page, {}, generator._decision_files(), {}};
  }
  return {page, {}, {}, {}};
}

void append_symbols(const Repository& repository, SymbolKind kind, const std::string& pattern,
                    std::vector<FoundSymbol>& out) {
  auto found = repository.search_symbols(
      pattern, {.kind = kind, .limit = std::numeric_limits<std::int32_t>::max()});
  const auto paths = repository.get_file_paths_batch(found.symbols);
  for (Symbol& symbol : found.symbols) {
    const std::string_view path = file_of(paths, symbol);
    out.push_back({std::string(path), kind, std::move(symbol.name), std::move(symbol.signature)});
  }
}

}  // namespace

std::vector<PageAnswer> answer_pages(const PageSourcesMixin& generator,
                                     std::span<const PageName> pages,
                                     std::span<const std::string> entry_points) {
  std::vector<PageAnswer> answers;
  for (const PageName page : pages) answers.push_back(answer_page(generator, page, entry_points));
  return answers;
}

std::vector<FoundSymbol> find_symbols(const Repository& repository, std::optional<SymbolKind> kind,
                                      const std::string& pattern) {
  std::vector<FoundSymbol> found;
  for (const SymbolKind each :
       {SymbolKind::kClass, SymbolKind::kInterface, SymbolKind::kConstant, SymbolKind::kVariable}) {
    if (!kind || *kind == each) append_symbols(repository, each, pattern, found);
  }
  std::ranges::stable_sort(found, {}, [](const FoundSymbol& symbol) {
    return std::tie(symbol.path, symbol.kind, symbol.name, symbol.signature);
  });
  return found;
}

std::vector<FileEdge> list_edges(const index::RepositoryIndex& index) {
  const auto files = index.files();
  std::vector<FileEdge> edges;
  edges.reserve(index.edges().size());
  for (const auto& edge : index.edges()) {
    edges.push_back({files[edge.source].path, files[edge.target].path, edge.weight});
  }
  return edges;
}

}  // namespace kestrix::program
