#include "kestrix/languages/csharp/grammar.h"

#include <kestrix/grammars.h>

#include <cstdint>
#include <string_view>

namespace kestrix::index::csharp {
namespace {

TSSymbol symbol_named(std::string_view name) {
  return ts_language_symbol_for_name(tree_sitter_c_sharp(), name.data(),
                                     static_cast<std::uint32_t>(name.size()), true);
}

TSFieldId field_named(std::string_view name) {
  return ts_language_field_id_for_name(tree_sitter_c_sharp(), name.data(),
                                       static_cast<std::uint32_t>(name.size()));
}

}  // namespace

Grammar::Grammar()
    : alias_qualified_name(symbol_named("alias_qualified_name")),
      argument(symbol_named("argument")),
      as(symbol_named("as_expression")),
      attribute(symbol_named("attribute")),
      attribute_argument(symbol_named("attribute_argument")),
      binary(symbol_named("binary_expression")),
      constant_pattern(symbol_named("constant_pattern")),
      error(symbol_named("ERROR")),
      generic_name(symbol_named("generic_name")),
      identifier(symbol_named("identifier")),
      invocation(symbol_named("invocation_expression")),
      is(symbol_named("is_expression")),
      member_access(symbol_named("member_access_expression")),
      member_binding(symbol_named("member_binding_expression")),
      namespace_block(symbol_named("namespace_declaration")),
      namespace_of_file(symbol_named("file_scoped_namespace_declaration")),
      qualified_name(symbol_named("qualified_name")),
      type_arguments(symbol_named("type_argument_list")),
      type_parameter(symbol_named("type_parameter")),
      using_directive(symbol_named("using_directive")),
      left(field_named("left")),
      name(field_named("name")),
      qualifier(field_named("qualifier")),
      returns(field_named("returns")),
      right(field_named("right")),
      type(field_named("type")),
      holds_types(ts_language_symbol_count(tree_sitter_c_sharp())) {
  for (const std::string_view node :
       {"base_list", "constant_pattern", "explicit_interface_specifier", "type_argument_list"}) {
    holds_types[symbol_named(node)] = true;
  }
}

const Grammar& Grammar::get() {
  static const Grammar grammar;
  return grammar;
}

bool Grammar::is_type_place(TSSymbol parent, TSFieldId place) const {
  if (place == type || place == returns) return true;
  if (place == right) return parent == as || parent == is;
  return place == 0 && parent < holds_types.size() && holds_types[parent];
}

}  // namespace kestrix::index::csharp
