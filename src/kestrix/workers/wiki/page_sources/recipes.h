#pragma once

// The detectors as recipes over a host: the object into which the detectors are mixed. Every step
// is a call to one of its members, to a host function, or to a rule.
//
// `Host` names its types: `Path`, `PathSet`, `SymbolList`, and those of the maps that host
// functions are given: `Texts`, `Counts` and `Roots`. The types select the functions that a recipe
// calls, so a host whose values are of other types brings overloads beside those types.
//
// Nothing is kept between calls, and what a recipe does not catch reaches its caller.

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/utils/counter.h"
#include "kestrix/utils/ordered_map.h"
#include "kestrix/workers/project_units.h"
#include "kestrix/workers/report_generator.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki/page_sources/host_values.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"
#include "kestrix/workers/wiki/page_sources/rules.h"
#include "kestrix/workers/wiki/repo_facts.h"
#include "kestrix/workers/wiki_cluster.h"
#include "kestrix/workers/wiki_types.h"

namespace kestrix::recipes {

/// The constants that a recipe asks its host with. A host that has its own specialises this.
template <class Host>
struct HostConstants {
  static constexpr const auto& exception_patterns() { return EXCEPTION_PATTERNS; }
  static constexpr const auto& registry_patterns() { return REGISTRY_PATTERNS; }
  static constexpr std::string_view domain_layer() { return DOMAIN_LAYER; }
  static constexpr std::size_t symbol_scan_limit() { return SYMBOL_SCAN_LIMIT; }
  static constexpr std::size_t detector_read_chars() { return DETECTOR_READ_CHARS; }
};

/// Paths as the host's own detectors return them.
template <class Host>
using Files = decltype(std::declval<const Host&>()._test_files());

template <class Host, class Paths>
auto _file_edges(const Host& host, const Paths& paths) {
  auto [files, units, edges] = cluster_inputs(host.repository(), paths);
  return std::move(edges);
}

template <class Host>
auto _config_files(const Host& host) {
  typename Host::PathSet out;
  for (auto&& record : host._source_files()) {
    auto path = _norm(path_or_empty(record));
    if (is_config_path(text_of(path))) out.insert(std::move(path));
  }
  return ascending(std::move(out));
}

template <class Host>
bool _has_exceptions(const Host& host) {
  for (const auto& pattern : HostConstants<Host>::exception_patterns()) {
    const auto found =
        host.repository().search_symbols(pattern, {.kind = SymbolKind::kClass, .limit = 1});
    if (found.total > 0) return true;
  }
  return false;
}

/// The paths by count, highest first, then ascending.
template <class Path>
std::vector<Path> most_counted(const Counter<Path, std::int64_t>& counts) {
  std::vector<std::pair<Path, std::int64_t>> entries(counts.begin(), counts.end());
  const auto key = [](const auto& entry) { return std::pair(-entry.second, text_of(entry.first)); };
  detail::sort_guarded(entries, [&](const auto& a, const auto& b) { return key(a) < key(b); });
  std::vector<Path> paths;
  paths.reserve(entries.size());
  for (auto& entry : entries) paths.push_back(std::move(entry.first));
  return paths;
}

template <class Host>
auto _exception_files(const Host& host) {
  using Constants = HostConstants<Host>;
  const auto found = host.repository().search_symbols(
      Constants::exception_patterns(),
      {.kind = SymbolKind::kClass, .limit = Constants::symbol_scan_limit()});
  const auto paths = host.repository().get_file_paths_batch(found.symbols);
  typename Host::PathSet allowed;
  insert_all(allowed, host._planner_paths());
  Counter<typename Host::Path, std::int64_t> counts;
  for (auto&& symbol : found.symbols) {
    if (!has_id(symbol)) continue;
    const auto path = _norm(file_of(paths, symbol));
    if (allowed.contains(path)) counts.add(path, 1);
  }
  return first_entries(most_counted(counts), MAX_ASPECT_FILES);
}

template <class Host>
auto _data_model_files(const Host& host) {
  typename Host::Texts texts;
  for (auto&& path : host._planner_paths()) {
    auto text = _read_text(joined(host.repo_root(), path),
                           {.max_chars = HostConstants<Host>::detector_read_chars()});
    texts.insert_or_assign(path, std::move(text));
  }
  return data_model_files(texts);
}

template <class Host>
auto _decision_files(const Host& host) {
  std::vector<typename Host::Path> documents;
  for (auto&& record : host._indexed_documents()) {
    documents.push_back(_norm(required_path(record)));
  }
  return current_first(decision_docs(documents, documents.size()));
}

/// What the extending page is counted from: the symbols of one call, in one list, and their files.
template <class Host>
struct ExtensionSymbols {
  using Repository = std::remove_cvref_t<decltype(std::declval<const Host&>().repository())>;
  using Search = decltype(std::declval<const Repository&>().search_symbols(
      std::string_view(), std::declval<SymbolSearchOptions>()));
  using Range =
      decltype(append(std::declval<typename Host::SymbolList&>(), std::declval<Search>().symbols));
  using Paths = decltype(std::declval<const Repository&>().get_file_paths_batch(
      std::declval<const typename Host::SymbolList&>()));

  typename Host::SymbolList symbols;
  Range classes;    ///< all classes
  Range contracts;  ///< all symbols of the interface kind
  Range constants;  ///< those with a name like a registry's
  Range variables;  ///< those with a name like a registry's
  Paths paths;
};

template <class Host>
ExtensionSymbols<Host> look_up_extensions(const Host& host) {
  using Constants = HostConstants<Host>;
  const auto scan = [&](const auto& query, SymbolKind kind) {
    return host.repository()
        .search_symbols(query, {.kind = kind, .limit = Constants::symbol_scan_limit()})
        .symbols;
  };
  auto classes = scan(std::string_view("%"), SymbolKind::kClass);
  auto contracts = scan(std::string_view("%"), SymbolKind::kInterface);
  auto constants = scan(Constants::registry_patterns(), SymbolKind::kConstant);
  auto variables = scan(Constants::registry_patterns(), SymbolKind::kVariable);
  typename Host::SymbolList all;
  const auto first = append(all, std::move(classes));
  const auto second = append(all, std::move(contracts));
  const auto third = append(all, std::move(constants));
  const auto fourth = append(all, std::move(variables));
  auto paths = host.repository().get_file_paths_batch(all);
  return {std::move(all), first, second, third, fourth, std::move(paths)};
}

/// The root of every domain-layer component, mapped to itself.
template <class Host>
auto domain_roots(const Host& host) {
  typename Host::Roots roots;
  for (auto&& component : host.repository().get_all_components({.source_only = true})) {
    if (!is_layer(component, HostConstants<Host>::domain_layer())) continue;
    if (auto root = root_of_pattern(pattern_of(component))) roots.insert_or_assign(*root, *root);
  }
  return roots;
}

template <class Host>
struct ExtensionCounts {
  typename Host::Counts interfaces;
  typename Host::Counts registries;
};

template <class Host, class Roots>
ExtensionCounts<Host> count_extensions(const ExtensionSymbols<Host>& found, const Roots& domain) {
  ExtensionCounts<Host> counts;
  const auto path_of = [&](const auto& symbol) {
    return has_id(symbol) ? typename Host::Path(_norm(file_of(found.paths, symbol)))
                          : typename Host::Path("");
  };
  for (auto&& symbol : slice(found.symbols, found.classes)) {
    if (search(INTERFACE_SIGNATURE_RE, signature_of(symbol))) {
      counts.interfaces.add(path_of(symbol), 1);
    }
  }
  for (auto&& symbol : slice(found.symbols, found.contracts)) {
    const auto path = path_of(symbol);
    if (most_specific(domain, path)) counts.interfaces.add(path, 1);
  }
  for (const auto& named : {found.constants, found.variables}) {
    for (auto&& symbol : slice(found.symbols, named)) {
      if (is_registry_name(name_of(symbol))) counts.registries.add(path_of(symbol), 1);
    }
  }
  return counts;
}

template <class Host>
Files<Host> _extension_files(const Host& host) {
  typename Host::PathSet allowed;
  insert_all(allowed, host._planner_paths());
  const auto domain = domain_roots(host);
  std::optional<ExtensionSymbols<Host>> found;
  try {
    found = look_up_extensions(host);
  } catch (const std::exception& error) {
    warn(host, "wiki: the extension-point lookup failed", error);
    return Files<Host>();
  }
  const auto counts = count_extensions(*found, domain);
  const auto is_allowed = [&](const auto& path) { return allowed.contains(path); };
  const auto interfaces = filtered(counts.interfaces, is_allowed);
  const auto registries = filtered(counts.registries, is_allowed);
  const auto edges = host._file_edges(allowed);
  return extension_sources(interfaces, registries, dependents_of(edges));
}

template <class Host>
auto _test_files(const Host& host) {
  std::vector<typename Host::Path> tests;
  for (auto&& record : host._source_files()) {
    auto path = _norm(path_or_empty(record));
    if (is_test_path(path)) tests.push_back(std::move(path));
  }
  return tests;
}

template <class Host>
auto _example_files(const Host& host) {
  const auto tests = host._test_files();
  typename Host::PathSet paths;
  insert_all(paths, tests);
  insert_all(paths, host._planner_paths());
  const auto edges = host._file_edges(paths);
  return example_sources(tests, edges);
}

template <class Host, class Roots>
auto _flow_dispatch(const Host& host, const Roots& roots) {
  typename Host::PathSet paths;
  insert_all(paths, host._planner_paths());
  const auto edges = host._file_edges(paths);
  return dispatch_files(roots, edges);
}

}  // namespace kestrix::recipes
