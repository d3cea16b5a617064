#include "kestrix/languages/swift/code.h"

#include <array>
#include <optional>
#include <string_view>

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
    CodeRule{.node = "import_declaration", .act = Act::kSkip},
    CodeRule{.node = "directive", .act = Act::kSkip},
    CodeRule{.node = "operator_declaration", .act = Act::kSkip},
    CodeRule{.node = "precedence_group_declaration", .act = Act::kSkip},
    CodeRule{.node = "availability_condition", .act = Act::kSkip},
    CodeRule{.node = "comment", .act = Act::kSkip},
    CodeRule{.node = "multiline_comment", .act = Act::kSkip},

    CodeRule{.node = "class_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kClass},
    CodeRule{
        .node = "protocol_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kProtocol},
    CodeRule{
        .node = "typealias_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kAlias},
    CodeRule{.node = "enum_entry", .act = Act::kDeclare, .kind = DeclarationKind::kMember},
    CodeRule{
        .node = "function_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kFunction},
    CodeRule{.node = "protocol_function_declaration",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kMethod},
    CodeRule{
        .node = "property_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "protocol_property_declaration",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable},
    // What these do, their type or property does.
    CodeRule{.node = "init_declaration", .act = Act::kFunctionValue},
    CodeRule{.node = "deinit_declaration", .act = Act::kFunctionValue},
    CodeRule{.node = "subscript_declaration", .act = Act::kFunctionValue},
    CodeRule{.node = "computed_property", .act = Act::kFunctionValue},
    CodeRule{.node = "willset_didset_block", .act = Act::kFunctionValue},
    CodeRule{.node = "lambda_literal", .act = Act::kFunctionValue},

    CodeRule{.node = "inheritance_specifier", .act = Act::kPass, .ask = role_of_base},
    CodeRule{.node = "attribute", .act = Act::kPass, .role = Role::kAnnotates},
    CodeRule{.node = "simple_identifier", .parent = "attribute", .act = Act::kSkip},

    // Names that belong to a function, or to a generic declaration.
    CodeRule{.node = "type_identifier", .parent = "type_parameter", .act = Act::kBindType},
    CodeRule{
        .node = "type_identifier", .parent = "associatedtype_declaration", .act = Act::kBindType},
    CodeRule{.node = "identifier", .parent = "inheritance_constraint", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "equality_constraint", .act = Act::kSkip},
    CodeRule{.node = "simple_identifier",
             .parent = "parameter",
             .field = "external_name",
             .act = Act::kSkip},
    CodeRule{.node = "simple_identifier", .parent = "parameter", .act = Act::kBind},
    CodeRule{.node = "simple_identifier", .parent = "lambda_parameter", .act = Act::kBind},
    CodeRule{.node = "simple_identifier",
             .parent = "capture_list_item",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "simple_identifier", .field = "bound_identifier", .act = Act::kBind},
    CodeRule{.node = "simple_identifier", .parent = "pattern", .act = Act::kPattern},
    CodeRule{.node = "simple_identifier", .parent = "enum_type_parameters", .act = Act::kSkip},
    CodeRule{.node = "simple_identifier", .parent = "tuple_type_item", .act = Act::kSkip},
    CodeRule{.node = "simple_identifier", .parent = "value_argument_label", .act = Act::kSkip},
    CodeRule{.node = "simple_identifier", .parent = "statement_label", .act = Act::kSkip},
    CodeRule{.node = "simple_identifier", .parent = "macro_invocation", .act = Act::kSkip},
    CodeRule{.node = "simple_identifier", .parent = "prefix_expression", .act = Act::kSkip},

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
    CodeRule{.node = "call_suffix", .act = Act::kPass},
    CodeRule{.node = "constructor_suffix", .act = Act::kPass},
    CodeRule{.node = "value_arguments", .act = Act::kPass},
    CodeRule{.node = "value_argument", .act = Act::kEntry},
    CodeRule{.node = "array_literal", .act = Act::kTable},
    CodeRule{.node = "dictionary_literal", .act = Act::kTable},
    CodeRule{.node = "tuple_expression", .act = Act::kEntry},
    CodeRule{.node = "try_expression", .act = Act::kPass},
    CodeRule{.node = "await_expression", .act = Act::kPass},
    CodeRule{.node = "postfix_expression", .act = Act::kPass},
    CodeRule{.node = "as_expression", .act = Act::kPass},

    CodeRule{.node = "type_arguments", .act = Act::kTypeArguments},
    CodeRule{.node = "type_annotation", .act = Act::kPass, .role = Role::kType},
    CodeRule{.node = "function_type", .act = Act::kPass, .role = Role::kType},
    CodeRule{.node = "array_type", .act = Act::kPass},
    CodeRule{.node = "optional_type", .act = Act::kPass},
    CodeRule{.node = "existential_type", .act = Act::kPass},
    CodeRule{.node = "opaque_type", .act = Act::kPass},
    CodeRule{.node = "protocol_composition_type", .act = Act::kPass},
    CodeRule{.node = "suppressed_constraint", .act = Act::kSkip},
    CodeRule{.node = "type_identifier", .parent = "user_type", .act = Act::kSkip},
    CodeRule{.node = "user_type",
             .act = Act::kTypePath,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},

    CodeRule{.node = "line_string_literal", .act = Act::kString},
    CodeRule{.node = "multi_line_string_literal", .act = Act::kString},
    CodeRule{.node = "raw_string_literal", .act = Act::kString},
    CodeRule{.node = "integer_literal", .act = Act::kScalar},
    CodeRule{.node = "real_literal", .act = Act::kScalar},
    CodeRule{.node = "boolean_literal", .act = Act::kScalar},

    CodeRule{.node = "simple_identifier", .parent = "navigation_suffix", .act = Act::kSkip},
    CodeRule{.node = "navigation_expression", .act = Act::kPath},
    CodeRule{.node = "simple_identifier", .act = Act::kName},
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
