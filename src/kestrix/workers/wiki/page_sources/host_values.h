#pragma once

// How the recipes read the values that a C++ host hands them. A host with values of its own types
// brings overloads of these functions beside them.

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/index/repository.h"
#include "kestrix/workers/report_generator.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

using SymbolList = std::vector<Symbol>;

/// A run of symbols within a list.
struct SymbolRange {
  std::size_t first = 0;
  std::size_t last = 0;  ///< one past the end
};

/// Moves symbols to the end of the list and tells where they went.
inline SymbolRange append(SymbolList& list, SymbolList symbols) {
  const std::size_t first = list.size();
  std::ranges::move(symbols, std::back_inserter(list));
  return {first, list.size()};
}

inline std::span<const Symbol> slice(const SymbolList& list, SymbolRange range) {
  return std::span(list).subspan(range.first, range.last - range.first);
}

inline bool has_id(const Symbol& symbol) { return symbol.id != 0; }
inline std::string_view name_of(const Symbol& symbol) { return symbol.name; }
inline std::string_view signature_of(const Symbol& symbol) { return symbol.signature; }

/// The symbol's file by the batch look-up's answer, "" when it has none.
inline std::string_view file_of(const std::unordered_map<SymbolId, std::string>& paths,
                                const Symbol& symbol) {
  const auto found = paths.find(symbol.id);
  return found == paths.end() ? std::string_view() : std::string_view(found->second);
}

inline bool is_layer(const Component& component, std::string_view layer) {
  return component.layer == layer;
}
inline std::string_view pattern_of(const Component& component) { return component.path_pattern; }

inline void insert_all(PathSet& set, const std::vector<std::string>& paths) {
  set.insert(paths.begin(), paths.end());
}

inline std::vector<std::string> ascending(PathSet set) {
  std::vector<std::string> paths;
  paths.reserve(set.size());
  while (!set.empty()) paths.push_back(std::move(set.extract(set.begin()).value()));
  std::ranges::sort(paths);
  return paths;
}

inline RepoPath joined(const RepoRoot& root, const std::string& path) { return {&root, path}; }

}  // namespace kestrix
