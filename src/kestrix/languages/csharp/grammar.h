#pragma once

#include <tree_sitter/api.h>

#include <vector>

namespace kestrix::index::csharp {

/// The nodes and fields of the grammar that matter to the walk over a whole file, as the numbers
/// that comparing costs nothing with.
struct Grammar {
  /// The one of the process; usable from any thread.
  static const Grammar& get();

  static TSSymbol symbol(TSNode node) { return ts_node_symbol(node); }
  /// Whether what stands in that field of such a node is a type.
  bool is_type_place(TSSymbol parent, TSFieldId place) const;
  bool is_namespace(TSSymbol node) const {
    return node == namespace_block || node == namespace_of_file;
  }

  TSSymbol alias_qualified_name, argument, as, attribute, attribute_argument, binary,
      constant_pattern, error, generic_name, identifier, invocation, is, member_access,
      member_binding, namespace_block, namespace_of_file, qualified_name, type_arguments,
      type_parameter, using_directive;
  TSFieldId left, name, qualifier, returns, right, type;
  std::vector<bool> holds_types;  ///< by symbol: nodes whose children without a field are types

 private:
  Grammar();
};

}  // namespace kestrix::index::csharp
