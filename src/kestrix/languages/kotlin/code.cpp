#include "kestrix/languages/kotlin/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/kotlin/annotations.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/resolver.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    skip("package_header"),
    skip("import"),
    skip("line_comment"),
    skip("block_comment"),

    declare("class_declaration", DeclarationKind::kClass),
    declare("object_declaration", DeclarationKind::kObject),
    declare("companion_object", DeclarationKind::kObject),
    declare("enum_entry", DeclarationKind::kMember),
    CodeRule{.node = "type_alias",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kAlias,
             .name = "type"},
    CodeRule{.node = "function_declaration",
             .parent = "class_body",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kMethod},
    CodeRule{.node = "function_declaration",
             .parent = "enum_class_body",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kMethod},
    declare("function_declaration", DeclarationKind::kFunction),
    declare("property_declaration", DeclarationKind::kVariable),
    declare("class_parameter", DeclarationKind::kVariable),
    CodeRule{.node = "class_body", .parent = "object_literal", .act = Act::kNameless},
    // What these do, their type or property does.
    act("secondary_constructor", Act::kFunctionValue),
    act("anonymous_initializer", Act::kFunctionValue),
    act("getter", Act::kFunctionValue),
    act("setter", Act::kFunctionValue),
    act("lambda_literal", Act::kFunctionValue),
    act("anonymous_function", Act::kFunctionValue),

    // What has to be constructed is a class.
    pass("delegation_specifier", Role::kImplements),
    CodeRule{.node = "constructor_invocation",
             .parent = "delegation_specifier",
             .act = Act::kConstruct,
             .role = Role::kExtends,
             .name = ""},
    CodeRule{.node = "constructor_invocation", .act = Act::kConstruct, .name = ""},
    pass("explicit_delegation", Role::kUses),
    CodeRule{.node = "user_type",
             .parent = "explicit_delegation",
             .act = Act::kTypePath,
             .role = Role::kImplements},

    pass("annotation", Role::kAnnotates),
    pass("file_annotation", Role::kAnnotates),
    skip("use_site_target"),

    // Names that belong to a function, or to a generic declaration.
    skip("identifier", "function_declaration", "name"),
    CodeRule{.node = "identifier", .parent = "type_parameter", .act = Act::kBindType},
    skip("identifier", "type_constraint"),
    CodeRule{.node = "identifier", .parent = "class_parameter", .act = Act::kBindType},
    CodeRule{.node = "identifier", .parent = "parameter", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "setter", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "variable_declaration", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "catch_block", .act = Act::kBind},
    skip("identifier", "return_expression", "label"),
    skip("identifier", "this_expression"),
    skip("identifier", "super_expression"),

    pass("throw_expression", Role::kThrows),
    CodeRule{.node = "user_type",
             .parent = "catch_block",
             .act = Act::kTypePath,
             .role = Role::kCatches},
    CodeRule{.node = "user_type",
             .parent = "is_expression",
             .field = "right",
             .act = Act::kTypePath,
             .role = Role::kCatches},
    CodeRule{.node = "nullable_type",
             .parent = "is_expression",
             .field = "right",
             .act = Act::kPass,
             .role = Role::kCatches},
    pass("type_test", Role::kCatches),
    CodeRule{.node = "identifier",
             .parent = "when_entry",
             .field = "condition",
             .act = Act::kName,
             .role = Role::kLists},
    CodeRule{.node = "navigation_expression",
             .parent = "when_entry",
             .field = "condition",
             .act = Act::kPath,
             .role = Role::kLists},

    CodeRule{.node = "call_expression", .act = Act::kCall, .name = ""},
    CodeRule{.node = "type_arguments", .parent = "call_expression", .act = Act::kPass},
    CodeRule{
        .node = "value_arguments", .parent = "enum_entry", .act = Act::kPass, .role = Role::kLists},
    CodeRule{.node = "value_arguments",
             .parent = "constructor_delegation_call",
             .act = Act::kPass,
             .role = Role::kLists},
    pass("value_arguments"),
    act("value_argument", Act::kEntry),
    pass("annotated_lambda"),
    CodeRule{.node = "callable_reference", .act = Act::kPath, .role = Role::kLists, .weak = true},
    skip("identifier", "callable_reference"),
    act("collection_literal", Act::kTable),
    act("infix_expression", Act::kInfix),
    pass("parenthesized_expression"),
    pass("spread_expression"),
    pass("annotated_expression"),
    pass("labeled_expression"),

    act("type_arguments", Act::kTypeArguments),
    pass("type_projection"),
    pass("function_type", Role::kType),
    pass("nullable_type"),
    pass("non_nullable_type"),
    pass("parenthesized_type"),
    skip("identifier", "user_type"),
    CodeRule{.node = "user_type",
             .act = Act::kTypePath,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},

    act("string_literal", Act::kString),
    act("multiline_string_literal", Act::kString),
    scalar("character_literal"),
    scalar("number_literal"),
    scalar("float_literal"),

    skip("identifier", "navigation_expression"),
    act("navigation_expression", Act::kPath),
    act("identifier", Act::kName),
};

// Words of the language, and types of its own that every file mentions, are no names of the file.
constexpr auto kSelf =
    std::to_array<std::string_view>({"this", "super", "it", "true", "false", "null", "Any",
                                     "Boolean", "Int", "Long", "String", "Unit", "Nothing"});

constexpr auto kTables = std::to_array<std::string_view>(
    {"arrayOf", "hashMapOf", "immutableListOf", "linkedMapOf", "listOf", "mapOf", "mutableListOf",
     "mutableMapOf", "mutableSetOf", "persistentListOf", "sequenceOf", "setOf"});

bool has_child(TSNode node, std::string_view type) {
  TreeCursor cursor(node);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) == type) return true;
  }
  return false;
}

std::optional<TSNode> child_of(TSNode node, std::string_view type) {
  TreeCursor cursor(node);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) == type) return cursor.node();
  }
  return std::nullopt;
}

// A name stands in no field, but where it is one that the language keeps for itself.
std::optional<std::string_view> name_of(const SourceTree& tree, TSNode node, TSNode name) {
  if (!ts_node_is_null(name)) return tree.text(name);
  const std::string_view type = type_of(node);
  if (type == "companion_object") return "Companion";
  if (type == "class_parameter" && !has_child(node, "val") && !has_child(node, "var")) {
    return std::nullopt;
  }
  const auto variable = child_of(node, "variable_declaration");
  const auto found = child_of(variable.value_or(node), "identifier");
  return found ? std::optional(tree.text(*found)) : std::nullopt;
}

bool has_modifier(const SourceTree& tree, TSNode node, std::string_view modifier) {
  return packaged::has_modifier(tree, node, modifier);
}

bool exported(const SourceTree& tree, TSNode node, const Declaration&) {
  return !has_modifier(tree, node, "private");
}

// The class, interface or object around a member.
std::optional<TSNode> holder_of(TSNode member) {
  const TSNode body = ts_node_parent(member);
  if (ts_node_is_null(body) || !type_of(body).ends_with("class_body")) return std::nullopt;
  return ts_node_parent(body);
}

bool is_abstract(const SourceTree& tree, TSNode node, const Declaration& as) {
  if (as.kind == DeclarationKind::kClass) {
    return has_modifier(tree, node, "abstract") || has_modifier(tree, node, "sealed");
  }
  if (as.kind != DeclarationKind::kMethod || has_child(node, "function_body")) return false;
  if (has_modifier(tree, node, "abstract")) return true;
  const auto holder = holder_of(node);
  return holder && has_child(*holder, "interface");
}

// What an object holds is no field of each value of a type.
void refine_property(const SourceTree& tree, TSNode node, Declaration& as) {
  if (has_modifier(tree, node, "const")) as.kind = DeclarationKind::kConstant;
  if (as.kind != DeclarationKind::kField) return;
  const auto holder = holder_of(node);
  const std::string_view type = holder ? type_of(*holder) : std::string_view();
  if (type.ends_with("object") || type == "object_declaration") {
    as.kind = DeclarationKind::kVariable;
  }
}

bool refine(const SourceTree& tree, TSNode node, Declaration& as) {
  const std::string_view type = type_of(node);
  if (type == "property_declaration") refine_property(tree, node, as);
  if (type == "class_parameter") as.kind = DeclarationKind::kField;
  if (type != "class_declaration") return true;
  if (has_child(node, "interface")) {
    as.kind = DeclarationKind::kInterface;
  } else if (has_modifier(tree, node, "enum")) {
    as.kind = DeclarationKind::kEnum;
  } else if (has_modifier(tree, node, "data")) {
    as.kind = DeclarationKind::kRecord;
  }
  return true;
}

// What follows the "=".
TSNode value_of(TSNode variable) {
  bool behind = false;
  TreeCursor cursor(variable);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (behind && ts_node_is_named(cursor.node())) return cursor.node();
    behind |= type_of(cursor.node()) == "=";
  }
  return {};
}

}  // namespace

constinit const CodeRules kotlin_code = {.rules = kRules,
                                         .calls = jvm::kCalls,
                                         .self = kSelf,
                                         .tables = kTables,
                                         .members_in_scope = true,
                                         .extensions = true,
                                         .exported = exported,
                                         .is_abstract = is_abstract,
                                         .name_of = name_of,
                                         .key_of = jvm::key_of,
                                         .refine = refine,
                                         .value_of = value_of,
                                         .hidden = kotlin::hidden_mentions};

}  // namespace kestrix::index
