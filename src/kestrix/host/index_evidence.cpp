#include "kestrix/host/index_evidence.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace kestrix {
namespace {

constexpr std::size_t kToldNames = 3;

}  // namespace

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string names_and_lines(std::span<const Place> places) {
  std::string out;
  for (const Place& place : places.first(std::min(places.size(), kToldNames))) {
    if (!out.empty()) out += ", ";
    out += place.name;
    if (place.line > 0) out += fmt::format(":{}", place.line);
  }
  if (places.size() > kToldNames) out += " …";
  return out;
}

IndexEvidence::IndexEvidence(const index::RepositoryIndex& index)
    : index_(index), edges_(index.edges().begin(), index.edges().end()) {
  std::ranges::sort(edges_, {},
                    [](const auto& edge) { return std::tuple(edge.target, edge.source); });
}

Reason IndexEvidence::definitions(std::string kind, std::string_view what,
                                  std::vector<Place> places) {
  Reason reason{std::move(kind), fmt::format("{}: {}", what, names_and_lines(places)),
                places.size(), std::move(places)};
  if (reason.at.size() > kMostPlaces) reason.at.resize(kMostPlaces);
  return reason;
}

std::span<const index::IndexedEdge> IndexEvidence::edges_to(std::string_view path) const {
  const auto file = index_.find(path);
  if (!file) return {};
  const auto found = std::ranges::equal_range(edges_, *file, {}, &index::IndexedEdge::target);
  return {found.begin(), found.end()};
}

Reason IndexEvidence::used_by(std::string_view path) const {
  const auto edges = edges_to(path);
  std::vector<index::IndexedEdge> ranked(edges.begin(), edges.end());
  std::ranges::stable_sort(ranked, std::ranges::greater(), &index::IndexedEdge::weight);
  Reason reason{"used_by",
                fmt::format("used by {}", counted(ranked.size(), "file", "files")),
                ranked.size(),
                {}};
  if (ranked.size() > kMostPlaces) ranked.resize(kMostPlaces);
  for (const auto& edge : ranked) {
    reason.at.push_back({std::string(index_.files()[edge.source].path), 0, {}});
  }
  return reason;
}

Place IndexEvidence::place_of(const index::IndexedSymbol& symbol) const {
  return {std::string(index_.files()[symbol.file].path), symbol.line, std::string(symbol.name)};
}

Place IndexEvidence::place_of(SymbolId id) const {
  const auto symbols = index_.symbols();
  if (id < 1 || static_cast<std::size_t>(id) > symbols.size()) return {};
  return place_of(symbols[static_cast<std::size_t>(id) - 1]);
}

}  // namespace kestrix
