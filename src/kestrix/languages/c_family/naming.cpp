#include "kestrix/languages/c_family/naming.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "kestrix/languages/c_family/declarators.h"
#include "kestrix/languages/code/names.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

// What stands before the declarators of a declaration.
struct Specifiers {
  bool is_static = false;
  bool is_extern = false;
  bool is_inline = false;
  bool constant = false;
};

Specifiers specifiers_of(const SourceTree& tree, TSNode declaration) {
  Specifiers found;
  TreeCursor cursor(declaration);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (cursor.field() == "declarator") break;
    const std::string_view type = type_of(cursor.node());
    if (type != "storage_class_specifier" && type != "type_qualifier") continue;
    const std::string_view word = tree.text(cursor.node());
    found.is_static |= word == "static";
    found.is_extern |= word == "extern";
    found.is_inline |= word == "inline" || word == "__inline" || word == "__inline__";
    found.constant |= word == "const" || word == "constexpr" || word == "constinit";
  }
  return found;
}

bool has_body(TSNode specifier) { return field_of(specifier, "body").has_value(); }

bool is_specifier(std::string_view type) {
  return type == "struct_specifier" || type == "class_specifier" || type == "union_specifier" ||
         type == "enum_specifier";
}

// The first plain name that a typedef gives its type, if it is among the first ones.
std::optional<TSNode> plain_typedef(TSNode definition) {
  int left = 8;
  TreeCursor cursor(definition);
  for (bool more = cursor.to_first_child(); more && left > 0; more = cursor.to_next_sibling()) {
    if (cursor.field() != "declarator") continue;
    if (type_of(cursor.node()) == "type_identifier") return cursor.node();
    --left;
  }
  return std::nullopt;
}

bool is_scoped(TSNode enumeration) {
  if (type_of(enumeration) != "enum_specifier" || ts_node_child_count(enumeration) < 2) return true;
  const std::string_view word = type_of(ts_node_child(enumeration, 1));
  return word == "class" || word == "struct";
}

std::string on_one_line(std::string_view text) {
  std::string line(text.substr(0, kLongestMention));
  std::ranges::replace_if(
      line, [](char c) { return c == '\n' || c == '\t' || c == '\r'; }, ' ');
  return line;
}

// "typedef struct tag {…} name" is known by both, mostly by the latter.
std::optional<Named> named_type(const SourceTree& tree, TSNode type, TSNode parent,
                                DeclarationKind kind) {
  if (!has_body(type)) return std::nullopt;
  Named named{.kind = kind, .open = !is_scoped(type)};
  const auto tag = field_of(type, "name");
  if (tag && type_of(*tag) == "type_identifier") {
    named.node = *tag;
  } else if (tag) {
    // A specialization is another type than the one that it names.
    named.name = type_of(*tag) == "template_type" ? on_one_line(tree.text(*tag))
                                                  : name_path(tree.text(*tag)).value_or("");
  }
  if (type_of(parent) == "type_definition") {
    if (const auto name = plain_typedef(parent)) {
      named.name = tree.text(*name);
      if (tag && tree.text(*tag) != named.name) named.other = tree.text(*tag);
    }
  }
  if (named.node.id == nullptr && named.name.empty()) return std::nullopt;
  return named;
}

std::optional<Named> named_alias(const SourceTree& tree, TSNode declarator, TSNode definition) {
  const auto found = declarator_of(declarator);
  const auto type = field_of(definition, "type");
  if (!found || !type) return std::nullopt;
  Named named{.name = std::string(tree.text(found->name)), .kind = DeclarationKind::kAlias};
  if (found->name.id == declarator.id) named.node = declarator;
  if (!is_specifier(type_of(*type)) || named.node.id == nullptr) return named;
  const auto tag = field_of(*type, "name");
  const auto first = plain_typedef(definition);
  if (has_body(*type) && first && first->id != declarator.id) {
    named.aliased = tree.text(*first);
  } else if (has_body(*type) || !tag || tree.text(*tag) == named.name) {
    return std::nullopt;  // the type itself
  } else {
    named.aliased = tree.text(*tag);
  }
  return named;
}

std::optional<Named> named_namespace(const SourceTree& tree, TSNode node) {
  if (ts_node_child_count(node) > 0 && type_of(ts_node_child(node, 0)) == "inline") {
    return std::nullopt;
  }
  const auto name = field_of(node, "name");
  if (!name) return Named{};
  const auto path = name_path(tree.text(*name));
  if (!path) return std::nullopt;
  return Named{.node = *name, .name = *path, .kind = DeclarationKind::kModule};
}

bool is_guard(const SourceTree& tree, TSNode macro, TSNode parent, std::string_view name) {
  if (type_of(macro) != "preproc_def" || field_of(macro, "value")) return false;
  const auto asked = type_of(parent) == "preproc_ifdef" ? field_of(parent, "name") : std::nullopt;
  if (asked && tree.text(*asked) == name) return true;
  while (name.ends_with('_')) name.remove_suffix(1);
  return name.ends_with("_H") || name.ends_with("_HPP") || name.ends_with("_INCLUDED");
}

// "TEST(Suite, Name) {…}" and the like: what is defined is known by the arguments, which are names
// of nothing; but of what is written with a fixture the first one is its type.
void name_by_arguments(const SourceTree& tree, TSNode definition, Named& named) {
  const bool fixture = named.name.ends_with("_F") || named.name.ends_with("_P");
  const auto declarator = field_of(definition, "declarator");
  const auto parameters = declarator ? field_of(*declarator, "parameters") : std::nullopt;
  if (!parameters) return;
  std::string name;
  std::size_t parts = 0;
  for_each_child(*parameters, [&](TSNode parameter, std::string_view) {
    const auto part = name_path(tree.text(parameter));
    if (!part || ++parts > 2) return;
    if (parts > 1 || !fixture) named.words.push_back(tree.text(parameter));
    if (!name.empty()) name += '.';
    name += *part;
  });
  if (!name.empty()) named.name = std::move(name);
}

std::optional<Named> named_function(const SourceTree& tree, TSNode node, TSNode parent,
                                    bool header) {
  const auto declarator = field_of(node, "declarator");
  const auto found = declarator ? declarator_of(*declarator) : std::nullopt;
  if (!found) return std::nullopt;
  const Specifiers said = specifiers_of(tree, node);
  const bool member = type_of(parent) == "field_declaration_list";
  Named named{.name = name_of(tree, *found),
              .kind = DeclarationKind::kFunction,
              .exported = !said.is_static || member || (header && said.is_inline)};
  if (field_of(node, "type") || member || !is_upper_case(named.name)) return named;
  name_by_arguments(tree, node, named);
  named.exported = false;
  return named;
}

// "= 0" behind the declarator.
bool is_pure(const SourceTree& tree, TSNode declarator) {
  std::string_view rest = tree.text().substr(ts_node_end_byte(declarator), 40);
  const auto skip_blanks = [&] {
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n"), rest.size()));
  };
  skip_blanks();
  if (!rest.starts_with('=')) return false;
  rest.remove_prefix(1);
  skip_blanks();
  return rest.starts_with('0');
}

// Of "declaration" and "field_declaration" one declarator.
std::optional<Named> named_value(const SourceTree& tree, TSNode node, TSNode parent, bool header) {
  const auto found = declarator_of(node);
  if (!found) return std::nullopt;
  const Specifiers said = specifiers_of(tree, parent);
  Named named{.name = name_of(tree, *found), .kind = DeclarationKind::kVariable};
  if (found->name.id == node.id) named.node = node;
  if (type_of(parent) == "field_declaration") {
    named.kind = found->function ? DeclarationKind::kMethod : DeclarationKind::kField;
    named.is_abstract = found->function ? is_pure(tree, node) : found->function_pointer;
    return named;
  }
  if (found->function) {
    named.kind = DeclarationKind::kFunction;
    named.is_abstract = true;
    named.exported = !said.is_static || (header && said.is_inline);
    return named;
  }
  if (said.constant || is_upper_case(named.name)) named.kind = DeclarationKind::kConstant;
  named.is_abstract = said.is_extern && !found->value;
  named.exported = !said.is_static || (header && (said.constant || said.is_inline));
  named.instance = !found->array;
  return named;
}

std::optional<Named> named(const SourceTree& tree, TSNode node, TSNode parent, DeclarationKind kind,
                           bool header) {
  const std::string_view around = type_of(parent);
  const std::string_view type = type_of(node);
  if (type == "function_definition") return named_function(tree, node, parent, header);
  if (around == "type_definition" && kind == DeclarationKind::kAlias) {
    return named_alias(tree, node, parent);
  }
  if (around == "declaration" || around == "field_declaration") {
    if (!is_specifier(type)) return named_value(tree, node, parent, header);
  }
  if (type == "namespace_definition") return named_namespace(tree, node);
  if (is_specifier(type)) return named_type(tree, node, parent, kind);
  const auto name = field_of(node, "name");
  if (!name || ts_node_start_byte(*name) == ts_node_end_byte(*name)) return std::nullopt;
  if (kind == DeclarationKind::kMacro && is_guard(tree, node, parent, tree.text(*name))) {
    return std::nullopt;
  }
  return Named{.node = *name, .kind = kind};
}

}  // namespace

std::optional<Named> named_in_c(const SourceTree& tree, TSNode declaration, TSNode parent,
                                DeclarationKind kind) {
  return named(tree, declaration, parent, kind, false);
}

std::optional<Named> named_in_cpp(const SourceTree& tree, TSNode declaration, TSNode parent,
                                  DeclarationKind kind) {
  return named(tree, declaration, parent, kind, true);
}

}  // namespace kestrix::index
