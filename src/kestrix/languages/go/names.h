#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Collects which names the declarations of a Go file use: those of imported packages, and those
/// that must come from the file's own package. Names bound within a function are told apart by
/// function, not by block.
class GoNames {
 public:
  explicit GoNames(const SourceTree& tree) : tree_(tree) {}

  /// Makes `name` stand for the import at that place of `imports`.
  void bind_import(std::string name, std::size_t import);

  /// Walks one declaration of the top level.
  void read(TSNode declaration);

  /// Adds the names used of each import to `imports`, in the order of their first use, and returns
  /// the other names without `declared` (ascending). Ascending.
  std::vector<NameUse> take(std::vector<ImportFact>& imports,
                            const std::vector<std::string>& declared);

 private:
  struct Level;
  struct Use {
    std::string_view name;
    std::string_view member;  // what is selected from it, "" for nothing
    bool type;
  };

  Level below(TSNode node, TSSymbol symbol, const Level& level, TSFieldId field) const;
  void see_identifier(TSNode node, const Level& level, TSFieldId field);
  void see_type(TSNode node, const Level& level, TSFieldId field);
  void see_qualified(TSNode node);
  void settle();

  const SourceTree& tree_;
  std::unordered_map<std::string, std::size_t, SeededHash> imports_;
  std::vector<Use> pending_;  // of the declaration that is being walked
  std::unordered_set<std::string_view, SeededHash> values_;
  std::unordered_set<std::string_view, SeededHash> types_;
  struct Imported {
    std::size_t import;
    std::string_view package;  // as it is called here
    std::string_view member;
  };
  std::vector<Imported> imported_;
  std::map<std::string_view, std::uint32_t> used_;
};

}  // namespace kestrix::index
