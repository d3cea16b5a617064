#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index::csharp {

/// A name without the "@" that lets it be a keyword.
std::string_view plain(std::string_view identifier);

/// A type's name as facts write it: with the number of its parameters.
std::string with_arity(std::string_view name, std::size_t arity);

/// How many types a list of type parameters or arguments holds.
std::size_t arity_of(TSNode list);

/// What a file declares itself, so that these names need no look-up outside of it.
class OwnTypes {
 public:
  void add(std::string name) { everywhere_.emplace(std::move(name), 0); }
  /// A type inside of another one: known in that one's body only, from byte `start` to `end`.
  /// Bodies are given in the order in which they start.
  void add_nested(std::string name, std::uint32_t start, std::uint32_t end);
  bool contains(const std::string& name, std::uint32_t at) const;

 private:
  using Stretch = std::pair<std::uint32_t, std::uint32_t>;
  std::unordered_map<std::string, int, SeededHash> everywhere_;
  std::unordered_map<std::string, std::vector<Stretch>, SeededHash> nested_;  // apart, ascending
};

/// A name of several parts, as the code spells it out.
struct Chain {
  std::uint32_t line = 0;  ///< of its first use
  std::uint32_t uses = 0;
};

struct UsedNames {
  /// Types, methods called on something and attributes, each with its mark.
  std::map<std::string, std::uint32_t> names;
  std::map<std::string, Chain, std::less<>> chains;
};

/// Walks the whole tree once for the names that stand where the grammar expects a type, before a
/// member's name, or where a method is called. Directives that import are left out. Linear.
UsedNames used_names(const SourceTree& tree, const OwnTypes& own);

}  // namespace kestrix::index::csharp
