#include "capi/answers/answers.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "kestrix/text/wildmatch.h"
#include "kestrix/utils/ordered_map.h"

namespace kestrix {
namespace {

class PathList {
 public:
  void add(const std::vector<Pick>& picks) {
    for (const Pick& pick : picks) {
      if (seen_.insert(pick.path).second) paths_.push_back(pick.path);
    }
  }

  std::vector<std::string> take() && { return std::move(paths_); }

 private:
  std::unordered_set<std::string, StringHash> seen_;
  std::vector<std::string> paths_;
};

}  // namespace

std::vector<AnsweredPage> answer_pages(const WikiGenerator& generator,
                                       std::span<const Page* const> pages,
                                       std::span<const std::string> entry_points,
                                       const std::function<void()>& before_each) {
  std::vector<AnsweredPage> answers;
  for (const Page* page : pages) {
    if (before_each) before_each();
    if (page->answer == nullptr) {
      answers.push_back({page, answer_flows(generator, entry_points)});
    } else {
      answers.push_back({page, answer_page(generator, *page)});
    }
  }
  return answers;
}

WhyAnswer answer_why(const WikiGenerator& generator, const std::filesystem::path& root,
                     const Page& page, const std::string& file) {
  const std::filesystem::path path(file);
  if (!path.is_absolute()) return why(generator, page, file);
  const auto below = path.lexically_normal().lexically_relative(root);
  const bool outside = below.empty() || *below.begin() == "..";
  return why(generator, page, outside ? file : below.native());
}

std::vector<FoundEdge> answer_edges(const index::RepositoryIndex& index,
                                    const EdgeRequest& request) {
  auto edges = request.path.empty() ? find_edges(index, request.query)
                                    : shortest_way(index, request.path[0], request.path[1]);
  return request.folders ? sum_by_folder(edges, *request.folders) : edges;
}

std::vector<FoundSymbol> find_symbols(const index::RepositoryIndex& index,
                                      std::span<const SymbolKind> kinds, const std::string& glob) {
  const index::Wildmatch pattern(glob, true);
  const bool every = glob == "*";
  std::vector<FoundSymbol> found;
  for (const auto& symbol : index.symbols()) {
    if (!kinds.empty() && std::ranges::find(kinds, symbol.kind) == kinds.end()) continue;
    if (!every && !pattern.matches(symbol.name)) continue;
    found.push_back({std::string(index.files()[symbol.file].path), symbol.kind,
                     std::string(symbol.name), std::string(symbol.signature), symbol.line});
  }
  std::ranges::stable_sort(found, {}, [](const FoundSymbol& symbol) {
    return std::tie(symbol.path, symbol.kind, symbol.name, symbol.signature);
  });
  return found;
}

std::vector<std::string> distinct_paths(std::span<const AnsweredPage> pages) {
  PathList list;
  for (const AnsweredPage& page : pages) {
    if (const auto* flows = std::get_if<FlowsAnswer>(&page.answer)) {
      for (const FlowClass& flow : flows->classes) {
        list.add(flow.files);
        list.add(flow.further);
      }
    } else {
      list.add(std::get<PageAnswer>(page.answer).files);
      list.add(std::get<PageAnswer>(page.answer).further);
    }
  }
  return std::move(list).take();
}

}  // namespace kestrix
