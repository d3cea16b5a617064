#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/languages/code/frame.h"
#include "kestrix/languages/code/local_names.h"
#include "kestrix/languages/code/rules.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// What the readers of one file's nodes share: where the walk stands, and what it has seen that
/// counts further down.
struct WalkState {
  WalkState(const CompiledRules& compiled, const SourceTree& file, FileFacts& found)
      : rules(compiled), source(compiled.source()), tree(file), facts(found) {}

  /// Goes below a node; false when there is nothing.
  bool push(const Frame& frame, TSNode node);
  void pop();

  /// The name, or each of the names that stand directly in the node, is local from here on.
  void bind(TSNode node);
  /// The same of a parameter of the type or function that is being declared.
  void bind_to_declaration(TSNode node);
  void bind_name(std::string_view name);

  bool is_in_type(std::uint32_t holder) const;
  /// What stands in a function, also in one without a name, but not what stands in a type there.
  bool is_local(std::uint32_t holder) const;
  /// Whether what is being looked at is the value of a declared type.
  bool makes_type() const;

  const CompiledRules& rules;
  const CodeRules& source;
  const SourceTree& tree;
  FileFacts& facts;
  std::vector<Frame> frames{};
  LocalNames locals{};
  std::vector<std::string> contexts{""};  ///< what macros say to those in their blocks
  std::unordered_map<std::string, std::uint32_t, SeededHash, std::equal_to<>> types{};  ///< at top
  // What is said of types that may be declared further down.
  std::vector<std::pair<Claim, std::uint32_t>> claims{};          ///< with their lines
  std::vector<std::string_view> owners{};                         ///< of methods
  std::set<std::pair<std::uint32_t, std::string_view>> hidden{};  ///< by the type that holds them
};

}  // namespace kestrix::index
