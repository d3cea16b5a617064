#pragma once

// The service as the recipes see it: the generator object whose method is called, and what the
// Python module holds, the service's functions, the constants and the rules. Each step of a recipe
// is one Python operation, and its arguments and results are the objects themselves.

#include <array>
#include <cstddef>
#include <exception>
#include <optional>
#include <string_view>
#include <vector>

#include "kestrix/index/repository.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"
#include "python/containers.h"
#include "python/names.h"
#include "python/object.h"
#include "python/rules.h"

namespace kestrix::python {

struct SymbolsFound {
  Object symbols;
  Object total;
};

/// Compares what a search says with a number, as Python does.
bool operator>(const Object& total, int number);

/// The host's `repository`.
class RepositoryHandle : public Object {
 public:
  explicit RepositoryHandle(Object handle) : Object(std::move(handle)) {}

  SymbolsFound search_symbols(std::string_view pattern, SymbolSearchOptions options) const {
    return search_symbols(Object(pattern), options);
  }
  /// `query` is one pattern or a sequence of them, which the index is given as a list.
  SymbolsFound search_symbols(const Object& query, SymbolSearchOptions options) const;
  Object get_file_paths_batch(const Object& symbols) const;
  Object get_all_components(ComponentOptions options) const;
};

/// The object into which the detectors are mixed.
class Host {
 public:
  using Path = Object;
  using PathSet = Set;
  using SymbolList = List;
  using Texts = Dict;
  using Counts = Dict;
  using Roots = Dict;

  explicit Host(Object self) : self_(std::move(self)) {}

  RepositoryHandle repository() const { return RepositoryHandle(self_.attribute("repository")); }
  Object repo_root() const { return self_.attribute("repo_root"); }
  Object _source_files() const { return call_method(self_, "_source_files"); }
  Object _planner_paths() const { return call_method(self_, "_planner_paths"); }
  Object _indexed_documents() const { return call_method(self_, "_indexed_documents"); }
  List _test_files() const { return List(call_method(self_, "_test_files")); }
  Object _file_edges(const Object& paths) const { return call_method(self_, "_file_edges", paths); }

 private:
  Object self_;
};

/// Logs the pending exception, which a recipe absorbed, and takes it away.
void warn(const Host& host, std::string_view message, const std::exception& error);

// The service's functions.
Object _norm(const Object& path);
Object _read_text(const Object& path, ReadTextOptions options);
bool is_test_path(const Object& path);
Object stem(const Object& path);
std::optional<Object> root_of_pattern(const Object& path_pattern);
std::optional<Object> most_specific(const Dict& roots, const Object& path);
std::array<Object, 3> cluster_inputs(const Object& repository, const Object& paths);
Object data_model_files(const Dict& texts);
Object decision_docs(const std::vector<Object>& documents, std::size_t max_files);
std::vector<Object> extension_files(const Mapping& contracts, const Mapping& registries,
                                    std::size_t limit);
bool search(const InterfaceSignaturePattern& pattern, const Object& signature);

// The rules, as the module has them.
Object current_first(const Object& docs);
Object dispatch_files(const Object& roots, const Object& edges);
Object dependents_of(const Object& edges);
List extension_sources(const Mapping& interfaces, const Mapping& registries,
                       const Object& dependents);
Object example_sources(const List& tests, const Object& edges);

// How the recipes read the service's records.
Object path_or_empty(const Object& source_file);
Object required_path(const Object& document);
bool has_id(const Object& symbol);
Object name_of(const Object& symbol);
Object signature_of(const Object& symbol);
Object file_of(const Object& paths, const Object& symbol);
bool is_layer(const Object& component, const Object& layer);
Object pattern_of(const Object& component);
Object joined(const Object& root, const Object& path);
bool is_registry_name(const Object& name);

}  // namespace kestrix::python

template <>
struct kestrix::recipes::HostConstants<kestrix::python::Host> {
  static python::Object exception_patterns() { return python::global("_EXCEPTION_PATTERNS"); }
  static python::Object registry_patterns() { return python::global("_REGISTRY_PATTERNS"); }
  static python::Object domain_layer() { return python::global("_DOMAIN_LAYER"); }
  static std::size_t symbol_scan_limit() { return python::global_size("SYMBOL_SCAN_LIMIT"); }
  static std::size_t detector_read_chars() { return python::global_size("DETECTOR_READ_CHARS"); }
};
