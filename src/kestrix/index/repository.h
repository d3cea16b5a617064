#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "kestrix/facts/symbol_kind.h"

namespace kestrix {

/// Key of a symbol in the index; 0 marks a symbol that cannot be placed in a file.
using SymbolId = std::int64_t;

struct Symbol {
  SymbolId id = 0;
  std::string name;
  std::string signature;  ///< the declaration's head on one line; may be empty

  friend bool operator==(const Symbol&, const Symbol&) = default;
};

/// One evidence-backed dependency: `source` depends on `target`.
///
/// The paths are views into a table that outlives the edge (the index's, or the caller's strings).
struct FileEdge {
  std::string_view source;
  std::string_view target;
  double weight = 0;  ///< strength of the evidence; sums are meaningful

  friend bool operator==(const FileEdge&, const FileEdge&) = default;
};
static_assert(std::is_trivially_copyable_v<FileEdge>);

/// Some files of the index with the dependencies among them.
struct FileGraph {
  std::vector<std::string_view> files;  ///< ascending
  std::vector<FileEdge> edges;          ///< by source, then target
};

struct Component {
  std::string layer;
  std::string path_pattern;
};

struct SymbolSearchOptions {
  SymbolKind kind;
  std::size_t limit;  ///< the most symbols that are listed
};

struct SymbolSearch {
  std::vector<Symbol> symbols;  ///< at most `limit`, in a total order
  std::int64_t total = 0;       ///< how many symbols match, whatever the limit
  bool truncated = false;       ///< whether the limit cut the list
};

struct ComponentOptions {
  bool source_only = false;  ///< leave out components that hold no production source
};

/// The handle of a repository's index, as the detectors see it.
///
/// Name patterns: "%" stands for any run of characters, the empty one included; nothing else is
/// special, and case is ignored. Every operation throws when the index cannot be read.
class Repository {
 public:
  virtual ~Repository() = default;

  /// The symbols of one kind whose name matches the pattern.
  virtual SymbolSearch search_symbols(std::string_view pattern,
                                      SymbolSearchOptions options) const = 0;
  /// The symbols of one kind whose name matches any of the patterns; each is listed once.
  virtual SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                                      SymbolSearchOptions options) const = 0;

  /// The file of each symbol, by the symbol's id. A symbol without a file has no entry.
  virtual std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const = 0;

  /// Those of the files at `paths` that the index knows, each once. Views live as long as the
  /// handle does.
  virtual FileGraph graph_among(std::span<const std::string_view> paths) const = 0;

  virtual std::vector<Component> get_all_components(ComponentOptions options) const = 0;
};

}  // namespace kestrix
