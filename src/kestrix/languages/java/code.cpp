#include "kestrix/languages/java/code.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/packaged/reading.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    CodeRule{.node = "package_declaration", .act = Act::kSkip},
    CodeRule{.node = "import_declaration", .act = Act::kSkip},
    CodeRule{.node = "module_declaration", .act = Act::kSkip},
    CodeRule{.node = "line_comment", .act = Act::kSkip},
    CodeRule{.node = "block_comment", .act = Act::kSkip},

    CodeRule{.node = "class_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kClass},
    CodeRule{
        .node = "interface_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kInterface},
    CodeRule{.node = "annotation_type_declaration",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kInterface},
    CodeRule{.node = "enum_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kEnum},
    CodeRule{.node = "enum_constant", .act = Act::kDeclare, .kind = DeclarationKind::kMember},
    CodeRule{.node = "record_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kRecord},
    CodeRule{.node = "method_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kMethod},
    CodeRule{.node = "annotation_type_element_declaration",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kMethod},
    CodeRule{.node = "variable_declarator",
             .parent = "constant_declaration",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kConstant},
    CodeRule{
        .node = "variable_declarator", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    // Of a record a component is what a field is of a class.
    CodeRule{.node = "formal_parameter", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    // What these do, their type does.
    CodeRule{.node = "constructor_declaration", .act = Act::kFunctionValue},
    CodeRule{.node = "compact_constructor_declaration", .act = Act::kFunctionValue},
    CodeRule{.node = "static_initializer", .act = Act::kFunctionValue},
    CodeRule{.node = "block", .parent = "class_body", .act = Act::kFunctionValue},
    CodeRule{.node = "identifier",
             .parent = "constructor_declaration",
             .field = "name",
             .act = Act::kSkip},
    CodeRule{.node = "identifier",
             .parent = "compact_constructor_declaration",
             .field = "name",
             .act = Act::kSkip},
    CodeRule{.node = "lambda_expression", .act = Act::kFunctionValue},
    CodeRule{.node = "class_body", .parent = "object_creation_expression", .act = Act::kNameless},
    CodeRule{
        .node = "identifier", .parent = "method_declaration", .field = "name", .act = Act::kSkip},

    CodeRule{.node = "superclass", .act = Act::kPass, .role = Role::kExtends},
    CodeRule{.node = "super_interfaces", .act = Act::kPass, .role = Role::kImplements},
    CodeRule{.node = "extends_interfaces", .act = Act::kPass, .role = Role::kExtends},
    CodeRule{.node = "permits", .act = Act::kPass, .role = Role::kLists},
    CodeRule{.node = "type_list", .act = Act::kPass},

    CodeRule{.node = "modifiers", .parent = "field_declaration", .act = Act::kPass, .ahead = true},
    CodeRule{
        .node = "modifiers", .parent = "constant_declaration", .act = Act::kPass, .ahead = true},
    CodeRule{.node = "marker_annotation", .act = Act::kPass, .role = Role::kAnnotates},
    CodeRule{
        .node = "annotation", .act = Act::kCall, .role = Role::kAnnotates, .value = "arguments"},
    CodeRule{.node = "annotation_argument_list", .act = Act::kPass},
    CodeRule{.node = "element_value_pair", .act = Act::kEntry},
    CodeRule{
        .node = "identifier", .parent = "element_value_pair", .field = "key", .act = Act::kSkip},
    CodeRule{.node = "element_value_array_initializer", .act = Act::kTable},

    // Names that belong to a function, or to a generic declaration.
    CodeRule{.node = "type_identifier", .parent = "type_parameter", .act = Act::kBindType},
    CodeRule{.node = "type_bound", .act = Act::kPass, .role = Role::kType},
    CodeRule{.node = "identifier",
             .parent = "lambda_expression",
             .field = "parameters",
             .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "inferred_parameters", .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "enhanced_for_statement",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "resource", .field = "name", .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "catch_formal_parameter",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "instanceof_expression",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "type_pattern", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "record_pattern_component", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "labeled_statement", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "break_statement", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "continue_statement", .act = Act::kSkip},

    CodeRule{.node = "throw_statement", .act = Act::kPass, .role = Role::kThrows},
    CodeRule{.node = "throws", .act = Act::kPass, .role = Role::kThrows},
    CodeRule{.node = "catch_formal_parameter", .act = Act::kPass},
    CodeRule{.node = "catch_type", .act = Act::kPass, .role = Role::kCatches},

    // What a value is tested for.
    CodeRule{.node = "type_identifier",
             .parent = "instanceof_expression",
             .field = "right",
             .act = Act::kName,
             .role = Role::kCatches},
    CodeRule{.node = "scoped_type_identifier",
             .parent = "instanceof_expression",
             .field = "right",
             .act = Act::kPath,
             .role = Role::kCatches},
    CodeRule{.node = "generic_type",
             .parent = "instanceof_expression",
             .field = "right",
             .act = Act::kPass,
             .role = Role::kCatches},
    CodeRule{.node = "type_pattern", .act = Act::kPass, .role = Role::kCatches},
    CodeRule{.node = "record_pattern", .act = Act::kPass, .role = Role::kCatches},
    CodeRule{.node = "record_pattern_body", .act = Act::kPass, .role = Role::kUses},
    CodeRule{.node = "record_pattern_component", .act = Act::kPass},
    CodeRule{.node = "pattern", .act = Act::kPass},
    CodeRule{.node = "switch_label", .act = Act::kPass, .role = Role::kLists},

    CodeRule{
        .node = "method_invocation", .act = Act::kCall, .value = "arguments", .object = "object"},
    CodeRule{.node = "object_creation_expression",
             .act = Act::kConstruct,
             .name = "type",
             .value = "arguments"},
    CodeRule{.node = "argument_list",
             .parent = "enum_constant",
             .act = Act::kPass,
             .role = Role::kLists},
    CodeRule{.node = "argument_list",
             .parent = "explicit_constructor_invocation",
             .act = Act::kPass,
             .role = Role::kLists},
    CodeRule{.node = "argument_list", .act = Act::kPass},
    CodeRule{.node = "method_reference", .act = Act::kPath, .role = Role::kLists},
    CodeRule{.node = "identifier", .parent = "method_reference", .act = Act::kSkip},
    CodeRule{.node = "class_literal", .act = Act::kPass},
    CodeRule{.node = "type_identifier", .parent = "class_literal", .act = Act::kName},
    CodeRule{.node = "scoped_type_identifier", .parent = "class_literal", .act = Act::kPath},
    CodeRule{.node = "generic_type",
             .parent = "cast_expression",
             .field = "type",
             .act = Act::kPass,
             .role = Role::kType},
    CodeRule{.node = "scoped_type_identifier",
             .parent = "cast_expression",
             .field = "type",
             .act = Act::kPath,
             .role = Role::kType},
    CodeRule{.node = "type_identifier",
             .parent = "cast_expression",
             .field = "type",
             .act = Act::kName,
             .role = Role::kType},
    CodeRule{.node = "cast_expression", .act = Act::kPass},
    CodeRule{.node = "parenthesized_expression", .act = Act::kPass},
    CodeRule{.node = "type_identifier",
             .parent = "array_creation_expression",
             .field = "type",
             .act = Act::kName,
             .role = Role::kType},
    CodeRule{.node = "array_creation_expression", .act = Act::kLiteral, .name = "type"},
    CodeRule{.node = "array_initializer", .act = Act::kTable},

    CodeRule{.node = "generic_type", .act = Act::kPass},
    CodeRule{.node = "type_arguments", .act = Act::kTypeArguments},
    CodeRule{.node = "array_type",
             .act = Act::kPass,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},
    CodeRule{.node = "wildcard", .act = Act::kPass},
    CodeRule{.node = "annotated_type", .act = Act::kPass},
    CodeRule{.node = "scoped_type_identifier",
             .act = Act::kPath,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},
    CodeRule{.node = "type_identifier",
             .act = Act::kName,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},

    CodeRule{.node = "string_literal", .act = Act::kString},
    CodeRule{.node = "character_literal", .act = Act::kScalar},
    CodeRule{.node = "binary_integer_literal", .act = Act::kScalar},
    CodeRule{.node = "decimal_integer_literal", .act = Act::kScalar},
    CodeRule{.node = "hex_integer_literal", .act = Act::kScalar},
    CodeRule{.node = "octal_integer_literal", .act = Act::kScalar},
    CodeRule{.node = "decimal_floating_point_literal", .act = Act::kScalar},
    CodeRule{.node = "hex_floating_point_literal", .act = Act::kScalar},
    CodeRule{.node = "true", .act = Act::kScalar},
    CodeRule{.node = "false", .act = Act::kScalar},
    CodeRule{.node = "null_literal", .act = Act::kScalar},

    CodeRule{.node = "identifier", .parent = "field_access", .field = "field", .act = Act::kSkip},
    CodeRule{.node = "field_access", .act = Act::kPath},
    CodeRule{.node = "scoped_identifier", .act = Act::kPath},
    CodeRule{.node = "identifier", .act = Act::kName},
};

// Words of the language, and types of its own that every file mentions, are no names of the file.
constexpr std::array<std::string_view, 6> kSelf = {"this",   "super",  "var",
                                                   "String", "Object", "Override"};

constexpr auto kTables = std::to_array<std::string_view>(
    {"Arrays.asList", "EnumSet.of", "ImmutableList.of", "ImmutableMap.of", "ImmutableSet.of",
     "List.of", "Map.of", "Map.ofEntries", "Set.of", "Stream.of"});

// What bears the modifiers: of a variable the statement that declares it.
TSNode bearer(TSNode declaration) {
  return type_of(declaration) == "variable_declarator" ? ts_node_parent(declaration) : declaration;
}

bool exported(const SourceTree& tree, TSNode declaration, const Declaration&) {
  return !packaged::has_modifier(tree, bearer(declaration), "private");
}

bool is_abstract(const SourceTree& tree, TSNode declaration, const Declaration& as) {
  if (as.kind == DeclarationKind::kMethod) {
    return !field_of(declaration, "body") && !packaged::has_modifier(tree, declaration, "native");
  }
  return as.kind == DeclarationKind::kClass &&
         packaged::has_modifier(tree, declaration, "abstract");
}

// What all values of a type share is no field of each.
bool refine(const SourceTree& tree, TSNode declaration, Declaration& as) {
  const bool field =
      as.kind == DeclarationKind::kField && type_of(declaration) == "variable_declarator";
  if (field && packaged::has_modifier(tree, bearer(declaration), "static")) {
    as.kind = DeclarationKind::kVariable;
  }
  return true;
}

bool makes_type(TSNode construct) {
  const std::uint32_t count = ts_node_named_child_count(construct);
  return count > 0 && type_of(ts_node_named_child(construct, count - 1)) == "class_body";
}

}  // namespace

constinit const CodeRules java_code = {.rules = kRules,
                                       .calls = jvm::kCalls,
                                       .self = kSelf,
                                       .tables = kTables,
                                       .members_in_scope = true,
                                       .functions_apart = true,
                                       .keyed_by_member = [](TSNode) { return false; },
                                       .exported = exported,
                                       .is_abstract = is_abstract,
                                       .makes_type = makes_type,
                                       .key_of = jvm::key_of,
                                       .refine = refine};

}  // namespace kestrix::index
