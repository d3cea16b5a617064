#include "kestrix/languages/kotlin/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/kotlin/annotations.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/resolver.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    CodeRule{.node = "package_header", .act = Act::kSkip},
    CodeRule{.node = "import", .act = Act::kSkip},
    CodeRule{.node = "line_comment", .act = Act::kSkip},
    CodeRule{.node = "block_comment", .act = Act::kSkip},

    CodeRule{.node = "class_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kClass},
    CodeRule{.node = "object_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kObject},
    CodeRule{.node = "companion_object", .act = Act::kDeclare, .kind = DeclarationKind::kObject},
    CodeRule{.node = "enum_entry", .act = Act::kDeclare, .kind = DeclarationKind::kMember},
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
    CodeRule{
        .node = "function_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kFunction},
    CodeRule{
        .node = "property_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "class_parameter", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "class_body", .parent = "object_literal", .act = Act::kNameless},
    // What these do, their type or property does.
    CodeRule{.node = "secondary_constructor", .act = Act::kFunctionValue},
    CodeRule{.node = "anonymous_initializer", .act = Act::kFunctionValue},
    CodeRule{.node = "getter", .act = Act::kFunctionValue},
    CodeRule{.node = "setter", .act = Act::kFunctionValue},
    CodeRule{.node = "lambda_literal", .act = Act::kFunctionValue},
    CodeRule{.node = "anonymous_function", .act = Act::kFunctionValue},

    // What has to be constructed is a class.
    CodeRule{.node = "delegation_specifier", .act = Act::kPass, .role = Role::kImplements},
    CodeRule{.node = "constructor_invocation",
             .parent = "delegation_specifier",
             .act = Act::kConstruct,
             .role = Role::kExtends,
             .name = ""},
    CodeRule{.node = "constructor_invocation", .act = Act::kConstruct, .name = ""},
    CodeRule{.node = "explicit_delegation", .act = Act::kPass, .role = Role::kUses},
    CodeRule{.node = "user_type",
             .parent = "explicit_delegation",
             .act = Act::kTypePath,
             .role = Role::kImplements},

    CodeRule{.node = "annotation", .act = Act::kPass, .role = Role::kAnnotates},
    CodeRule{.node = "file_annotation", .act = Act::kPass, .role = Role::kAnnotates},
    CodeRule{.node = "use_site_target", .act = Act::kSkip},

    // Names that belong to a function, or to a generic declaration.
    CodeRule{
        .node = "identifier", .parent = "function_declaration", .field = "name", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "type_parameter", .act = Act::kBindType},
    CodeRule{.node = "identifier", .parent = "type_constraint", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "class_parameter", .act = Act::kBindType},
    CodeRule{.node = "identifier", .parent = "parameter", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "setter", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "variable_declaration", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "catch_block", .act = Act::kBind},
    CodeRule{
        .node = "identifier", .parent = "return_expression", .field = "label", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "this_expression", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "super_expression", .act = Act::kSkip},

    CodeRule{.node = "throw_expression", .act = Act::kPass, .role = Role::kThrows},
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
    CodeRule{.node = "type_test", .act = Act::kPass, .role = Role::kCatches},
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
    CodeRule{.node = "value_arguments", .act = Act::kPass},
    CodeRule{.node = "value_argument", .act = Act::kEntry},
    CodeRule{.node = "annotated_lambda", .act = Act::kPass},
    CodeRule{.node = "callable_reference", .act = Act::kPath, .role = Role::kLists, .weak = true},
    CodeRule{.node = "identifier", .parent = "callable_reference", .act = Act::kSkip},
    CodeRule{.node = "collection_literal", .act = Act::kTable},
    CodeRule{.node = "infix_expression", .act = Act::kInfix},
    CodeRule{.node = "parenthesized_expression", .act = Act::kPass},
    CodeRule{.node = "spread_expression", .act = Act::kPass},
    CodeRule{.node = "annotated_expression", .act = Act::kPass},
    CodeRule{.node = "labeled_expression", .act = Act::kPass},

    CodeRule{.node = "type_arguments", .act = Act::kTypeArguments},
    CodeRule{.node = "type_projection", .act = Act::kPass},
    CodeRule{.node = "function_type", .act = Act::kPass, .role = Role::kType},
    CodeRule{.node = "nullable_type", .act = Act::kPass},
    CodeRule{.node = "non_nullable_type", .act = Act::kPass},
    CodeRule{.node = "parenthesized_type", .act = Act::kPass},
    CodeRule{.node = "identifier", .parent = "user_type", .act = Act::kSkip},
    CodeRule{.node = "user_type",
             .act = Act::kTypePath,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},

    CodeRule{.node = "string_literal", .act = Act::kString},
    CodeRule{.node = "multiline_string_literal", .act = Act::kString},
    CodeRule{.node = "character_literal", .act = Act::kScalar},
    CodeRule{.node = "number_literal", .act = Act::kScalar},
    CodeRule{.node = "float_literal", .act = Act::kScalar},

    CodeRule{.node = "identifier", .parent = "navigation_expression", .act = Act::kSkip},
    CodeRule{.node = "navigation_expression", .act = Act::kPath},
    CodeRule{.node = "identifier", .act = Act::kName},
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
