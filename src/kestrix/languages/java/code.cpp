#include "kestrix/languages/java/code.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/packaged/reading.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    skip("package_declaration"),
    skip("import_declaration"),
    skip("module_declaration"),
    skip("line_comment"),
    skip("block_comment"),

    declare("class_declaration", DeclarationKind::kClass),
    declare("interface_declaration", DeclarationKind::kInterface),
    declare("annotation_type_declaration", DeclarationKind::kInterface),
    declare("enum_declaration", DeclarationKind::kEnum),
    declare("enum_constant", DeclarationKind::kMember),
    declare("record_declaration", DeclarationKind::kRecord),
    declare("method_declaration", DeclarationKind::kMethod),
    declare("annotation_type_element_declaration", DeclarationKind::kMethod),
    CodeRule{.node = "variable_declarator",
             .parent = "constant_declaration",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kConstant},
    declare("variable_declarator", DeclarationKind::kVariable),
    // Of a record a component is what a field is of a class.
    declare("formal_parameter", DeclarationKind::kVariable),
    // What these do, their type does.
    act("constructor_declaration", Act::kFunctionValue),
    act("compact_constructor_declaration", Act::kFunctionValue),
    act("static_initializer", Act::kFunctionValue),
    CodeRule{.node = "block", .parent = "class_body", .act = Act::kFunctionValue},
    skip("identifier", "constructor_declaration", "name"),
    skip("identifier", "compact_constructor_declaration", "name"),
    act("lambda_expression", Act::kFunctionValue),
    CodeRule{.node = "class_body", .parent = "object_creation_expression", .act = Act::kNameless},
    skip("identifier", "method_declaration", "name"),

    pass("superclass", Role::kExtends),
    pass("super_interfaces", Role::kImplements),
    pass("extends_interfaces", Role::kExtends),
    pass("permits", Role::kLists),
    pass("type_list"),

    CodeRule{.node = "modifiers", .parent = "field_declaration", .act = Act::kPass, .ahead = true},
    CodeRule{
        .node = "modifiers", .parent = "constant_declaration", .act = Act::kPass, .ahead = true},
    pass("marker_annotation", Role::kAnnotates),
    CodeRule{
        .node = "annotation", .act = Act::kCall, .role = Role::kAnnotates, .value = "arguments"},
    pass("annotation_argument_list"),
    act("element_value_pair", Act::kEntry),
    skip("identifier", "element_value_pair", "key"),
    act("element_value_array_initializer", Act::kTable),

    // Names that belong to a function, or to a generic declaration.
    CodeRule{.node = "type_identifier", .parent = "type_parameter", .act = Act::kBindType},
    pass("type_bound", Role::kType),
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
    skip("identifier", "labeled_statement"),
    skip("identifier", "break_statement"),
    skip("identifier", "continue_statement"),

    pass("throw_statement", Role::kThrows),
    pass("throws", Role::kThrows),
    pass("catch_formal_parameter"),
    pass("catch_type", Role::kCatches),

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
    pass("type_pattern", Role::kCatches),
    pass("record_pattern", Role::kCatches),
    pass("record_pattern_body", Role::kUses),
    pass("record_pattern_component"),
    pass("pattern"),
    pass("switch_label", Role::kLists),

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
    pass("argument_list"),
    CodeRule{.node = "method_reference", .act = Act::kPath, .role = Role::kLists},
    skip("identifier", "method_reference"),
    pass("class_literal"),
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
    pass("cast_expression"),
    pass("parenthesized_expression"),
    CodeRule{.node = "type_identifier",
             .parent = "array_creation_expression",
             .field = "type",
             .act = Act::kName,
             .role = Role::kType},
    CodeRule{.node = "array_creation_expression", .act = Act::kLiteral, .name = "type"},
    act("array_initializer", Act::kTable),

    pass("generic_type"),
    act("type_arguments", Act::kTypeArguments),
    CodeRule{.node = "array_type",
             .act = Act::kPass,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},
    pass("wildcard"),
    pass("annotated_type"),
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

    act("string_literal", Act::kString),
    scalar("character_literal"),
    scalar("binary_integer_literal"),
    scalar("decimal_integer_literal"),
    scalar("hex_integer_literal"),
    scalar("octal_integer_literal"),
    scalar("decimal_floating_point_literal"),
    scalar("hex_floating_point_literal"),
    scalar("true"),
    scalar("false"),
    scalar("null_literal"),

    skip("identifier", "field_access", "field"),
    act("field_access", Act::kPath),
    act("scoped_identifier", Act::kPath),
    act("identifier", Act::kName),
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
