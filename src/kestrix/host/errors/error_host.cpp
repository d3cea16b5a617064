#include "kestrix/host/errors/error_host.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/index/name_pattern.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedSymbol;

// So many files that define errors come before those that handle them.
constexpr std::size_t kMostDefining = 6;

// Named like an error, but what it extends is none.
bool is_other(const index::RepositoryIndex& index, const IndexedSymbol& symbol) {
  const auto declared = index.declarations(symbol.file);
  const auto same = [&symbol](const auto& row) {
    return is_type(row.kind) && row.name == symbol.name;
  };
  const auto found = std::ranges::find_if(declared, same);
  return found != declared.end() && !found->bases().empty();
}

std::vector<SymbolId> symbols_of(const index::RepositoryIndex& index,
                                 const std::set<DeclarationRef>& types) {
  std::set<std::pair<FileId, std::string_view>> known;
  for (const DeclarationRef type : types) known.emplace(type.file, index.declarations()[type].name);
  std::vector<index::NamePattern> patterns;
  for (const std::string_view pattern : EXCEPTION_PATTERNS) patterns.emplace_back(pattern);
  std::vector<SymbolId> ids;
  const auto symbols = index.symbols();
  for (std::size_t at = 0; at < symbols.size(); ++at) {
    const IndexedSymbol& symbol = symbols[at];
    if (symbol.kind != SymbolKind::kClass) continue;
    const bool named = std::ranges::any_of(
        patterns, [&symbol](const auto& pattern) { return pattern.matches(symbol.name); });
    const bool is_error = known.contains({symbol.file, symbol.name});
    if (is_error || (named && !is_other(index, symbol)))
      ids.push_back(static_cast<SymbolId>(at) + 1);
  }
  return ids;
}

}  // namespace

ErrorSymbols::ErrorSymbols(const index::RepositoryIndex& index, const ErrorEvidence& evidence)
    : index_(index), ids_(symbols_of(index, evidence.types)) {}

SymbolSearch ErrorSymbols::search_symbols(std::span<const std::string_view> /*patterns*/,
                                          SymbolSearchOptions options) const {
  SymbolSearch found;
  found.total = std::ssize(ids_);
  for (const SymbolId id : ids_) {
    if (found.symbols.size() == options.limit) break;
    const IndexedSymbol& symbol = index_.symbols()[static_cast<std::size_t>(id) - 1];
    found.symbols.push_back({id, std::string(symbol.name), std::string(symbol.signature)});
  }
  found.truncated = found.total > std::ssize(found.symbols);
  return found;
}

ErrorHost::ErrorHost(const WikiGenerator& generator, const ErrorEvidence& evidence)
    : symbols_(generator.indexed(), evidence) {
  struct Defining {
    double score;
    std::size_t types;
    std::string path;
  };
  std::vector<Defining> all;
  const auto& index = generator.indexed();
  for (auto& [path, places] : error_places(generator, evidence)) {
    const auto file = index.find(path);
    all.push_back({file ? evidence.defining.score(*file) : 0, places.size(), path});
  }
  std::ranges::sort(all, {}, [](const Defining& each) {
    return std::tuple(-each.score, -static_cast<double>(each.types), std::string_view(each.path));
  });
  if (all.size() > kMostDefining) all.resize(kMostDefining);
  for (Defining& each : all) paths_.push_back(std::move(each.path));
  std::ranges::sort(paths_);
}

std::map<std::string, std::vector<Place>, std::less<>> error_places(const WikiGenerator& generator,
                                                                    const ErrorEvidence& evidence) {
  std::map<std::string, std::vector<Place>, std::less<>> places;
  const auto& index = generator.indexed();
  for (const SymbolId id : symbols_of(index, evidence.types)) {
    const IndexedSymbol& symbol = index.symbols()[static_cast<std::size_t>(id) - 1];
    const std::string path = _norm(index.files()[symbol.file].path);
    if (!generator.is_planned(path)) continue;
    places[path].push_back({path, symbol.line, std::string(symbol.name)});
  }
  for (auto& [path, found] : places) std::ranges::sort(found, {}, &Place::line);
  return places;
}

}  // namespace kestrix
