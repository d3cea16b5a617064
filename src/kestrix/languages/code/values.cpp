#include "kestrix/languages/code/values.h"

#include <algorithm>
#include <array>
#include <optional>

#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

// Of a table so many elements are looked at to tell what it holds.
constexpr std::uint32_t kShownElements = 8;

Act act_of(const CompiledRules& rules, TSNode node, TSSymbol parent) {
  const auto* rule = rules.find(ts_node_symbol(node), parent, 0);
  return rule == nullptr ? Act::kPass : rule->rule->act;
}

ValueShape shape_of(Act act) {
  switch (act) {
    case Act::kString:
    case Act::kScalar:
      return ValueShape::kStrings;
    case Act::kName:
    case Act::kPath:
      return ValueShape::kNames;
    case Act::kTable:
    case Act::kCall:
    case Act::kConstruct:
    case Act::kLiteral:
      return ValueShape::kRecords;
    default:
      return ValueShape::kUnknown;
  }
}

// Of "key: value" what stands last counts; deeper than five such layers no table goes.
ValueShape shape_of_element(const CompiledRules& rules, TSNode element, TSSymbol parent) {
  for (int depth = 0; depth < 5; ++depth) {
    const Act act = act_of(rules, element, parent);
    if (act != Act::kEntry && act != Act::kPass) return shape_of(act);
    const std::uint32_t count = ts_node_named_child_count(element);
    if (count == 0) return ValueShape::kUnknown;
    parent = ts_node_symbol(element);
    element = ts_node_named_child(element, count - 1);
  }
  return ValueShape::kUnknown;
}

void take_table(const CompiledRules& rules, TSNode table, Declaration& as) {
  std::array<std::uint32_t, 7> seen{};
  std::uint32_t looked = 0;
  TreeCursor cursor(table);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (!ts_node_is_named(cursor.node()) || ts_node_is_extra(cursor.node())) continue;
    ++as.size;
    if (looked++ < kShownElements) {
      ++seen[static_cast<std::size_t>(
          shape_of_element(rules, cursor.node(), ts_node_symbol(table)))];
    }
  }
  const auto most = std::ranges::max_element(seen.begin() + 1, seen.end());
  as.shape = as.size == 0 ? ValueShape::kEmpty
             : *most == 0 ? ValueShape::kUnknown
                          : static_cast<ValueShape>(most - seen.begin());
}

void take_literal(const CompiledRules& rules, TSNode literal, TSSymbol parent, Declaration& as) {
  const auto* rule = rules.find(ts_node_symbol(literal), parent, 0);
  const auto keyed = rules.source().keyed_by_member;
  const TSNode elements = ts_node_child_by_field_id(literal, rule->value);
  if (ts_node_is_null(elements) || keyed == nullptr || keyed(literal)) {
    as.shape = ValueShape::kInstance;
  } else {
    take_table(rules, elements, as);
  }
}

// "List.of(a, b)": the arguments are a table's elements.
void take_call(const CompiledRules& rules, const SourceTree& tree, TSNode call, TSSymbol parent,
               Declaration& as) {
  as.shape = ValueShape::kInstance;
  const auto& tables = rules.source().tables;
  if (tables.empty()) return;
  const std::string_view text = tree.text(call);
  const std::string_view callee = text.substr(0, text.find_first_of("(<"));
  if (std::ranges::find(tables, callee) == tables.end()) return;
  const auto* rule = rules.find(ts_node_symbol(call), parent, 0);
  const std::uint32_t last = std::max(ts_node_named_child_count(call), 1U) - 1;
  const TSNode elements = rule->value != 0 ? ts_node_child_by_field_id(call, rule->value)
                                           : ts_node_named_child(call, last);
  if (!ts_node_is_null(elements)) take_table(rules, elements, as);
}

// Of "[…].freeze" and "Object.freeze([…])" the table.
std::optional<TSNode> wrapped(const CompiledRules& rules, const SourceTree& tree, TSNode call,
                              TSSymbol parent) {
  const auto& wrappers = rules.source().wrappers;
  const auto* rule = rules.find(ts_node_symbol(call), parent, 0);
  const TSNode callee = ts_node_child_by_field_id(call, rule->name);
  if (wrappers.empty() || ts_node_is_null(callee)) return std::nullopt;
  TSNode start = callee;
  TSNode table = ts_node_child_by_field_id(call, rule->value);
  if (!ts_node_is_null(table)) table = ts_node_named_child(table, 0);
  if (const TSNode object =
          rule->object == 0 ? TSNode{} : ts_node_child_by_field_id(call, rule->object);
      object.id != nullptr) {
    const bool whole = act_of(rules, object, ts_node_symbol(call)) == Act::kTable;
    (whole ? table : start) = object;
  }
  const auto name = tree.text(ts_node_start_byte(start), ts_node_end_byte(callee));
  if (ts_node_is_null(table) || std::ranges::find(wrappers, name) == wrappers.end())
    return std::nullopt;
  return table;
}

}  // namespace

void take_value(const CompiledRules& rules, const SourceTree& tree, TSNode value, TSSymbol parent,
                Declaration& as) {
  // Wrappers ("x as const", "&[…]", "(…)") are passed over.
  for (int depth = 0; depth < 4; ++depth) {
    switch (act_of(rules, value, parent)) {
      case Act::kTable:
        return take_table(rules, value, as);
      case Act::kLiteral:
        return take_literal(rules, value, parent, as);
      case Act::kCall:
      case Act::kConstruct:
        if (const auto table = wrapped(rules, tree, value, parent)) {
          parent = ts_node_symbol(value);
          value = *table;
          continue;
        }
        return take_call(rules, tree, value, parent, as);
      case Act::kString:
      case Act::kScalar:
        as.shape = ValueShape::kScalar;
        return;
      case Act::kFunctionValue:
        as.kind = DeclarationKind::kFunction;
        return;
      default:
        break;
    }
    if (ts_node_named_child_count(value) == 0) return;
    parent = ts_node_symbol(value);
    value = ts_node_named_child(value, 0);
  }
}

}  // namespace kestrix::index
