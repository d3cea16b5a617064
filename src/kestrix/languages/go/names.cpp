#include "kestrix/languages/go/names.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <optional>

#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 44> kPredeclared = {
    "any",     "append",     "bool",      "byte",   "cap",    "clear", "close", "comparable",
    "complex", "complex128", "complex64", "copy",   "delete", "error", "false", "float32",
    "float64", "imag",       "int",       "int16",  "int32",  "int64", "int8",  "iota",
    "len",     "make",       "max",       "min",    "new",    "nil",   "panic", "print",
    "println", "real",       "recover",   "rune",   "string", "true",  "uint",  "uint16",
    "uint32",  "uint64",     "uint8",     "uintptr"};

TSSymbol symbol(std::string_view type) {
  return ts_language_symbol_for_name(tree_sitter_go(), type.data(),
                                     static_cast<std::uint32_t>(type.size()), true);
}

TSFieldId field(std::string_view name) {
  return ts_language_field_id_for_name(tree_sitter_go(), name.data(),
                                       static_cast<std::uint32_t>(name.size()));
}

struct Symbols {
  TSSymbol identifier = symbol("identifier");
  TSSymbol type_identifier = symbol("type_identifier");
  TSSymbol qualified_type = symbol("qualified_type");
  TSSymbol selector = symbol("selector_expression");
  TSSymbol expression_list = symbol("expression_list");
  TSSymbol short_var = symbol("short_var_declaration");
  TSSymbol range = symbol("range_clause");
  TSSymbol receive = symbol("receive_statement");
  TSSymbol type_switch = symbol("type_switch_statement");
  TSSymbol literal_element = symbol("literal_element");
  TSSymbol literal_value = symbol("literal_value");
  TSSymbol composite = symbol("composite_literal");
  TSSymbol type_spec = symbol("type_spec");
  TSSymbol type_alias = symbol("type_alias");
  TSSymbol function = symbol("function_declaration");
  std::array<TSSymbol, 5> binders = {
      symbol("parameter_declaration"), symbol("variadic_parameter_declaration"),
      symbol("type_parameter_declaration"), symbol("var_spec"), symbol("const_spec")};
  TSFieldId alias_field = field("alias");
  TSFieldId key_field = field("key");
  TSFieldId left_field = field("left");
  TSFieldId name_field = field("name");
  TSFieldId operand_field = field("operand");
  TSSymbol type_parameter = symbol("type_parameter_declaration");
  std::array<TSSymbol, 4> keyed_by_value = {symbol("map_type"), symbol("array_type"),
                                            symbol("slice_type"),
                                            symbol("implicit_length_array_type")};
};

const Symbols& symbols() {
  static const Symbols all;
  return all;
}

bool is_exported(std::string_view name) {
  const auto first = static_cast<unsigned char>(name.front());
  return (first >= 'A' && first <= 'Z') || first >= 0x80;
}

template <class List>
bool contains(const List& list, TSSymbol symbol) {
  return std::ranges::find(list, symbol) != list.end();
}

}  // namespace

// A node on the way down, as its children need to know it.
struct GoNames::Level {
  TSNode node;
  TSSymbol symbol;
  bool binds = false;   // identifiers directly in it are being bound
  bool fields = false;  // keys directly in it name fields
};

void GoNames::bind_import(std::string name, std::size_t import) {
  imports_.try_emplace(std::move(name), import);
}

void GoNames::read(TSNode declaration) {
  const Symbols& is = symbols();
  TreeCursor cursor(declaration);
  std::vector<Level> levels = {{declaration, ts_node_symbol(declaration)}};
  bool more = cursor.to_first_child();
  while (more) {
    const TSNode node = cursor.node();
    const TSSymbol symbol = ts_node_symbol(node);
    if (symbol == is.identifier) {
      see_identifier(node, levels.back(), cursor.field_id());
    } else if (symbol == is.type_identifier) {
      see_type(node, levels.back(), cursor.field_id());
    } else if (symbol == is.qualified_type) {
      see_qualified(node);
    } else if (ts_node_child_count(node) > 0) {
      levels.push_back(below(node, symbol, levels.back(), cursor.field_id()));
      cursor.to_first_child();
      continue;
    }
    more = cursor.to_next_sibling();
    while (!more && levels.size() > 1) {
      cursor.to_parent();
      levels.pop_back();
      more = cursor.to_next_sibling();
    }
  }
  settle();
}

GoNames::Level GoNames::below(TSNode node, TSSymbol symbol, const Level& level,
                              TSFieldId field) const {
  const Symbols& is = symbols();
  Level next{node, symbol};
  if (symbol == is.expression_list) {
    const bool left =
        field == is.left_field &&
        (level.symbol == is.short_var || level.symbol == is.range || level.symbol == is.receive);
    next.binds = left || (level.symbol == is.type_switch && field == is.alias_field);
  } else if (symbol == is.literal_value) {
    const auto type = level.symbol == is.composite ? field_of(level.node, "type") : std::nullopt;
    next.fields = !type || !contains(is.keyed_by_value, ts_node_symbol(*type));
  } else if (symbol == is.literal_element) {
    next.fields = level.fields && field == is.key_field;
  } else {
    next.fields = level.symbol == is.literal_value && level.fields;
  }
  return next;
}

void GoNames::see_identifier(TSNode node, const Level& level, TSFieldId field) {
  const Symbols& is = symbols();
  const std::string_view name = tree_.text(node);
  if (name == "_") return;
  if (level.binds || (field == is.name_field && contains(is.binders, level.symbol))) {
    (level.symbol == is.type_parameter ? types_ : values_).insert(name);
  } else if (level.symbol == is.selector && field == is.operand_field) {
    const auto member = field_of(level.node, "field");
    pending_.push_back({name, member ? tree_.text(*member) : std::string_view(), false});
  } else if (!(level.symbol == is.literal_element && level.fields) &&
             !(level.symbol == is.function && field == is.name_field)) {
    pending_.push_back({name, {}, false});
  }
}

void GoNames::see_type(TSNode node, const Level& level, TSFieldId field) {
  const Symbols& is = symbols();
  const std::string_view name = tree_.text(node);
  if (field == is.name_field && (level.symbol == is.type_spec || level.symbol == is.type_alias)) {
    types_.insert(name);
  } else {
    pending_.push_back({name, {}, true});
  }
}

void GoNames::see_qualified(TSNode node) {
  const auto package = field_of(node, "package");
  const auto name = field_of(node, "name");
  if (package && name) pending_.push_back({tree_.text(*package), tree_.text(*name), true});
}

// A variable that hides a package in one block of a function may not do so in the next one.
void GoNames::settle() {
  for (const Use& use : pending_) {
    const bool bound = values_.contains(use.name);
    const auto import = imports_.find(std::string(use.name));
    if (!use.member.empty() && import != imports_.end() &&
        (use.type || !bound || is_exported(use.member))) {
      imported_.push_back({import->second, use.name, use.member});
    } else if (!(use.type ? types_.contains(use.name) : bound || types_.contains(use.name)) &&
               !std::ranges::binary_search(kPredeclared, use.name)) {
      ++used_[use.name];
    }
  }
  pending_.clear();
  values_.clear();
  types_.clear();
}

std::vector<NameUse> GoNames::take(std::vector<ImportFact>& imports,
                                   const std::vector<std::string>& declared) {
  std::vector<std::unordered_map<std::string_view, std::size_t, SeededHash>> places(imports.size());
  for (const auto& [import, package, member] : imported_) {
    ImportFact& fact = imports[import];
    if (fact.local.empty()) fact.local = package;
    const auto [place, fresh] = places[import].try_emplace(member, fact.names.size());
    if (fresh) {
      std::string local = std::string(package) + "." + std::string(member);
      fact.names.push_back({.name = std::string(member), .local = std::move(local)});
    }
    ++fact.names[place->second].uses;
    ++fact.uses;
  }
  std::vector<NameUse> uses;
  for (const auto& [name, count] : used_) {
    if (!std::ranges::binary_search(declared, name)) uses.push_back({std::string(name), count});
  }
  return uses;
}

}  // namespace kestrix::index
