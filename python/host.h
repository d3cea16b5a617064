#pragma once

// The service as the recipes see it: the generator object whose method is called, and the functions
// of the service's modules under the names that the page_sources module has for them. Each step of
// a recipe is one Python operation, and its arguments and results are the objects themselves.

#include <array>
#include <cstddef>
#include <exception>
#include <optional>
#include <string_view>
#include <vector>

#include "kestrix/index/repository.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"
#include "python/containers.h"
#include "python/edges.h"
#include "python/namespace.h"
#include "python/object.h"
#include "python/paths.h"

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

  SymbolsFound search_symbols(std::string_view pattern, SymbolSearchOptions options) const;
  SymbolsFound search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const;
  Object get_file_paths_batch(const Object& symbols) const;
  Object get_all_components(ComponentOptions options) const;

 private:
  SymbolsFound search(const Object& query, SymbolSearchOptions options) const;
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

  explicit Host(PyObject* self) : self_(Object::borrow(self)) {}

  RepositoryHandle repository() const;
  Object repo_root() const { return self_.attribute(names().repo_root); }
  Object _source_files() const { return call_method(self_, names().source_files); }
  Object _planner_paths() const { return call_method(self_, names().planner_paths); }
  Object _indexed_documents() const { return call_method(self_, names().indexed_documents); }
  Object _test_files() const { return call_method(self_, names().test_files); }
  Object _file_edges(const Object& paths) const {
    return call_method(self_, names().file_edges, paths);
  }

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

// How the recipes read the service's records.
Object path_or_empty(const Object& source_file);
Object required_path(const Object& document);
bool has_id(const Object& symbol);
Object name_of(const Object& symbol);
Object signature_of(const Object& symbol);
Object file_of(const Object& paths, const Object& symbol);
bool is_layer(const Object& component, std::string_view layer);
Object pattern_of(const Object& component);
Object joined(const Object& root, const Object& path);
bool is_registry_name(const Object& name);

}  // namespace kestrix::python
