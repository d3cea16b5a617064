#include "kestrix/languages/swift/code.h"

#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

// Tells the first of the types that a class names from those that follow: only that one may be a
// class, which the declaration shows if it is one of the repository.
std::optional<Role> role_of_base(TSNode specifier) {
  const TSNode declaration = ts_node_parent(specifier);
  if (ts_node_is_null(declaration)) return Role::kImplements;
  if (type_of(declaration) == "protocol_declaration") return Role::kExtends;
  const TSNode before = ts_node_prev_named_sibling(specifier);
  const auto kind = field_of(declaration, "declaration_kind");
  const bool first = ts_node_is_null(before) || type_of(before) != "inheritance_specifier";
  return first && kind && type_of(*kind) == "class" ? Role::kExtends : Role::kImplements;
}

std::optional<Role> role_of_transfer(TSNode statement) {
  const TSNode word = ts_node_child(statement, 0);
  if (ts_node_is_null(word) || type_of(word) != "throw_keyword") return std::nullopt;
  return Role::kThrows;
}

constexpr std::array kRules = {
    skip("import_declaration"),
    skip("directive"),
    skip("operator_declaration"),
    skip("precedence_group_declaration"),
    skip("availability_condition"),
    skip("comment"),
    skip("multiline_comment"),

    declare("class_declaration", DeclarationKind::kClass),
    declare("protocol_declaration", DeclarationKind::kProtocol),
    declare("typealias_declaration", DeclarationKind::kAlias),
    declare("enum_entry", DeclarationKind::kMember),
    declare("function_declaration", DeclarationKind::kFunction),
    declare("protocol_function_declaration", DeclarationKind::kMethod),
    declare("property_declaration", DeclarationKind::kVariable),
    declare("protocol_property_declaration", DeclarationKind::kVariable),
    // What these do, their type or property does.
    act("init_declaration", Act::kFunctionValue),
    act("deinit_declaration", Act::kFunctionValue),
    act("subscript_declaration", Act::kFunctionValue),
    act("computed_property", Act::kFunctionValue),
    act("willset_didset_block", Act::kFunctionValue),
    act("lambda_literal", Act::kFunctionValue),

    CodeRule{.node = "inheritance_specifier", .act = Act::kPass, .ask = role_of_base},
    pass("attribute", Role::kAnnotates),
    skip("simple_identifier", "attribute"),

    // Names that belong to a function, or to a generic declaration.
    CodeRule{.node = "type_identifier", .parent = "type_parameter", .act = Act::kBindType},
    CodeRule{
        .node = "type_identifier", .parent = "associatedtype_declaration", .act = Act::kBindType},
    skip("identifier", "inheritance_constraint"),
    skip("identifier", "equality_constraint"),
    skip("simple_identifier", "parameter", "external_name"),
    CodeRule{.node = "simple_identifier", .parent = "parameter", .act = Act::kBind},
    CodeRule{.node = "simple_identifier", .parent = "lambda_parameter", .act = Act::kBind},
    CodeRule{.node = "simple_identifier",
             .parent = "capture_list_item",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "simple_identifier", .field = "bound_identifier", .act = Act::kBind},
    CodeRule{.node = "simple_identifier", .parent = "pattern", .act = Act::kPattern},
    skip("simple_identifier", "enum_type_parameters"),
    skip("simple_identifier", "tuple_type_item"),
    skip("simple_identifier", "value_argument_label"),
    skip("simple_identifier", "statement_label"),
    skip("simple_identifier", "macro_invocation"),
    skip("simple_identifier", "prefix_expression"),

    CodeRule{.node = "control_transfer_statement", .act = Act::kPass, .ask = role_of_transfer},
    CodeRule{
        .node = "user_type", .parent = "pattern", .act = Act::kTypePath, .role = Role::kCatches},
    CodeRule{.node = "user_type",
             .parent = "check_expression",
             .act = Act::kTypePath,
             .role = Role::kCatches},
    CodeRule{.node = "navigation_expression",
             .parent = "pattern",
             .act = Act::kPath,
             .role = Role::kLists},

    CodeRule{.node = "call_expression", .act = Act::kCall, .name = "", .value = ""},
    CodeRule{.node = "constructor_expression",
             .act = Act::kConstruct,
             .name = "constructed_type",
             .value = ""},
    pass("call_suffix"),
    pass("constructor_suffix"),
    pass("value_arguments"),
    act("value_argument", Act::kEntry),
    act("array_literal", Act::kTable),
    act("dictionary_literal", Act::kTable),
    act("tuple_expression", Act::kEntry),
    pass("try_expression"),
    pass("await_expression"),
    pass("postfix_expression"),
    pass("as_expression"),

    act("type_arguments", Act::kTypeArguments),
    pass("type_annotation", Role::kType),
    pass("function_type", Role::kType),
    pass("array_type"),
    pass("optional_type"),
    pass("existential_type"),
    pass("opaque_type"),
    pass("protocol_composition_type"),
    skip("suppressed_constraint"),
    skip("type_identifier", "user_type"),
    CodeRule{.node = "user_type",
             .act = Act::kTypePath,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},

    act("line_string_literal", Act::kString),
    act("multi_line_string_literal", Act::kString),
    act("raw_string_literal", Act::kString),
    scalar("integer_literal"),
    scalar("real_literal"),
    scalar("boolean_literal"),

    skip("simple_identifier", "navigation_suffix"),
    act("navigation_expression", Act::kPath),
    act("simple_identifier", Act::kName),
};

// Words of the language, and types of its own that every file mentions, are no names of the file.
constexpr auto kSelf = std::to_array<std::string_view>(
    {"self", "super", "Self", "$0", "$1", "$2", "Any", "AnyObject", "Bool", "Character", "Double",
     "Float", "Int", "Never", "Optional", "String", "UInt", "Void"});

constexpr auto kOwn = std::to_array<std::string_view>({"Self", "super"});

constexpr auto kEnvironments =
    std::to_array<std::string_view>({"ProcessInfo.processInfo.environment"});

constexpr auto kCalls = std::to_array<CallRule>({
    {"Environment.get", Role::kReads},
    {"processInfo.environment", Role::kReads},
    {"getenv", Role::kReads},
    {"UserDefaults.standard.array", Role::kReads},
    {"UserDefaults.standard.bool", Role::kReads},
    {"UserDefaults.standard.data", Role::kReads},
    {"UserDefaults.standard.double", Role::kReads},
    {"UserDefaults.standard.integer", Role::kReads},
    {"UserDefaults.standard.object", Role::kReads},
    {"UserDefaults.standard.string", Role::kReads},
    {"UserDefaults.standard.url", Role::kReads},
    {"XCTAssertThrowsError", Role::kUses},
});

bool has_modifier(const SourceTree& tree, TSNode node, std::string_view modifier) {
  return packaged::has_modifier(tree, node, modifier);
}

std::string_view word_of(TSNode declaration) {
  const auto kind = field_of(declaration, "declaration_kind");
  return kind ? type_of(*kind) : std::string_view();
}

// What an extension holds belongs to a type that is declared elsewhere.
std::optional<std::string_view> name_of(const SourceTree& tree, TSNode node, TSNode name) {
  if (ts_node_is_null(name) || !ts_node_is_named(name)) return std::nullopt;
  if (type_of(node) == "class_declaration" && word_of(node) == "extension") return std::nullopt;
  return tree.text(name);
}

std::string_view owner(const SourceTree& tree, TSNode node) {
  if (type_of(node) != "class_declaration") return {};
  const auto name = field_of(node, "name");
  if (!name || type_of(*name) != "user_type") return {};
  const std::string_view text = tree.text(*name);
  return text.substr(0, text.find('<'));
}

bool exported(const SourceTree& tree, TSNode node, const Declaration&) {
  return !has_modifier(tree, node, "private") && !has_modifier(tree, node, "fileprivate");
}

bool is_abstract(const SourceTree&, TSNode node, const Declaration& as) {
  return as.kind == DeclarationKind::kMethod && type_of(node) == "protocol_function_declaration";
}

bool is_constant(TSNode property) {
  TreeCursor cursor(property);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) != "value_binding_pattern") continue;
    const TSNode word = ts_node_child(cursor.node(), 0);
    return !ts_node_is_null(word) && type_of(word) == "let";
  }
  return false;
}

// What is computed, or is the type's own, is no field of each of its values.
void refine_property(const SourceTree& tree, TSNode node, Declaration& as) {
  const bool own = has_modifier(tree, node, "static") || has_modifier(tree, node, "class");
  if (own || field_of(node, "computed_value")) {
    if (as.kind == DeclarationKind::kField) as.kind = DeclarationKind::kVariable;
  }
  const bool literal = as.shape != ValueShape::kUnknown && as.shape != ValueShape::kInstance &&
                       as.shape != ValueShape::kEmpty;
  if (as.kind == DeclarationKind::kVariable && literal && is_constant(node)) {
    as.kind = DeclarationKind::kConstant;
  }
}

bool refine(const SourceTree& tree, TSNode node, Declaration& as) {
  const std::string_view type = type_of(node);
  if (type == "property_declaration") refine_property(tree, node, as);
  if (type != "class_declaration") return true;
  const std::string_view word = word_of(node);
  if (word == "struct") as.kind = DeclarationKind::kStruct;
  if (word == "enum") as.kind = DeclarationKind::kEnum;
  return true;
}

}  // namespace

constinit const CodeRules swift_code = {.rules = kRules,
                                        .calls = kCalls,
                                        .self = kSelf,
                                        .own = kOwn,
                                        .environments = kEnvironments,
                                        .thrown_types = true,
                                        .members_in_scope = true,
                                        .extends_types = true,
                                        .owner = owner,
                                        .exported = exported,
                                        .is_abstract = is_abstract,
                                        .name_of = name_of,
                                        .refine = refine};

}  // namespace kestrix::index
