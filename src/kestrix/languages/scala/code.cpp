#include "kestrix/languages/scala/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    CodeRule{.node = "package_identifier", .act = Act::kSkip},
    CodeRule{.node = "import_declaration", .act = Act::kSkip},
    CodeRule{.node = "export_declaration", .act = Act::kSkip},
    CodeRule{.node = "comment", .act = Act::kSkip},
    CodeRule{.node = "block_comment", .act = Act::kSkip},

    CodeRule{.node = "class_definition", .act = Act::kDeclare, .kind = DeclarationKind::kClass},
    CodeRule{.node = "object_definition", .act = Act::kDeclare, .kind = DeclarationKind::kObject},
    CodeRule{.node = "trait_definition", .act = Act::kDeclare, .kind = DeclarationKind::kTrait},
    CodeRule{.node = "enum_definition", .act = Act::kDeclare, .kind = DeclarationKind::kEnum},
    CodeRule{.node = "package_object", .act = Act::kDeclare, .kind = DeclarationKind::kModule},
    CodeRule{.node = "simple_enum_case", .act = Act::kDeclare, .kind = DeclarationKind::kMember},
    CodeRule{.node = "full_enum_case", .act = Act::kDeclare, .kind = DeclarationKind::kMember},
    CodeRule{.node = "type_definition", .act = Act::kDeclare, .kind = DeclarationKind::kAlias},
    CodeRule{
        .node = "function_definition", .act = Act::kDeclare, .kind = DeclarationKind::kFunction},
    CodeRule{
        .node = "function_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kFunction},
    CodeRule{.node = "val_definition",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable,
             .name = "pattern"},
    CodeRule{.node = "var_definition",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable,
             .name = "pattern"},
    CodeRule{.node = "val_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "var_declaration", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "given_definition", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "class_parameter", .act = Act::kDeclare, .kind = DeclarationKind::kVariable},
    CodeRule{.node = "template_body", .parent = "instance_expression", .act = Act::kNameless},
    CodeRule{.node = "block", .act = Act::kFunctionValue},
    CodeRule{.node = "indented_block", .act = Act::kFunctionValue},
    CodeRule{.node = "lambda_expression", .act = Act::kFunctionValue},
    CodeRule{.node = "case_block", .act = Act::kFunctionValue},
    CodeRule{.node = "case_clause", .act = Act::kScope},

    // Of a class or a trait, as the declaration turns out to be.
    CodeRule{
        .node = "arguments", .parent = "extends_clause", .act = Act::kPass, .role = Role::kLists},
    CodeRule{.node = "extends_clause", .act = Act::kPass, .role = Role::kExtends},
    CodeRule{.node = "derives_clause", .act = Act::kPass, .role = Role::kAnnotates},
    CodeRule{.node = "arguments", .parent = "annotation", .act = Act::kPass, .role = Role::kUses},
    CodeRule{.node = "annotation", .act = Act::kPass, .role = Role::kAnnotates},
    CodeRule{.node = "identifier", .parent = "self_type", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "access_qualifier", .act = Act::kSkip},

    // Names that belong to a function, or to a generic declaration.
    CodeRule{.node = "identifier", .parent = "type_parameters", .act = Act::kBindType},
    CodeRule{
        .node = "identifier", .parent = "class_parameter", .field = "name", .act = Act::kBindType},
    CodeRule{.node = "identifier", .parent = "parameter", .field = "name", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "binding", .field = "name", .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "lambda_expression",
             .field = "parameters",
             .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "named_pattern", .act = Act::kSkip},
    CodeRule{.node = "identifier", .parent = "capture_pattern", .field = "name", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "tuple_pattern", .act = Act::kPattern},
    CodeRule{.node = "identifier", .parent = "infix_pattern", .act = Act::kPattern},
    CodeRule{.node = "identifier",
             .parent = "alternative_pattern",
             .act = Act::kPattern,
             .role = Role::kLists},
    CodeRule{.node = "identifier",
             .parent = "case_clause",
             .field = "pattern",
             .act = Act::kPattern,
             .role = Role::kLists},
    CodeRule{.node = "identifier", .field = "pattern", .act = Act::kPattern},
    CodeRule{.node = "stable_identifier",
             .parent = "case_clause",
             .act = Act::kPath,
             .role = Role::kLists},
    CodeRule{.node = "stable_identifier",
             .parent = "alternative_pattern",
             .act = Act::kPath,
             .role = Role::kLists},
    CodeRule{.node = "stable_identifier", .act = Act::kPath},
    CodeRule{.node = "identifier", .parent = "stable_identifier", .act = Act::kSkip},

    CodeRule{.node = "throw_expression", .act = Act::kPass, .role = Role::kThrows},
    CodeRule{.node = "typed_pattern", .act = Act::kPass, .role = Role::kCatches},
    CodeRule{.node = "case_class_pattern", .act = Act::kPass, .role = Role::kCatches},

    CodeRule{
        .node = "call_expression", .act = Act::kCall, .name = "function", .value = "arguments"},
    CodeRule{.node = "generic_function",
             .act = Act::kGeneric,
             .name = "function",
             .value = "type_arguments"},
    CodeRule{
        .node = "instance_expression", .act = Act::kConstruct, .name = "", .value = "arguments"},
    CodeRule{.node = "arguments", .act = Act::kPass},
    CodeRule{.node = "assignment_expression", .parent = "arguments", .act = Act::kEntry},
    CodeRule{.node = "tuple_expression", .act = Act::kEntry},
    CodeRule{.node = "infix_expression", .act = Act::kPass},
    CodeRule{
        .node = "identifier", .parent = "infix_expression", .field = "operator", .act = Act::kSkip},
    CodeRule{.node = "parenthesized_expression", .act = Act::kPass},
    CodeRule{.node = "postfix_expression", .act = Act::kPass},
    CodeRule{.node = "ascription_expression", .act = Act::kPass},

    CodeRule{.node = "type_arguments", .parent = "generic_function", .act = Act::kPass},
    CodeRule{.node = "type_arguments", .act = Act::kTypeArguments},
    CodeRule{.node = "generic_type", .act = Act::kPass},
    CodeRule{.node = "compound_type", .act = Act::kPass},
    CodeRule{.node = "infix_type", .act = Act::kPass},
    CodeRule{.node = "function_type", .act = Act::kPass, .role = Role::kType},
    CodeRule{.node = "operator_identifier", .act = Act::kSkip},
    CodeRule{.node = "type_identifier", .parent = "stable_type_identifier", .act = Act::kSkip},
    CodeRule{.node = "stable_type_identifier",
             .act = Act::kPath,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},
    CodeRule{.node = "type_identifier",
             .act = Act::kName,
             .role = Role::kType,
             .weak = true,
             .keeps_lists = true},

    CodeRule{.node = "string", .act = Act::kString},
    CodeRule{.node = "interpolated_string_expression", .act = Act::kString},
    CodeRule{.node = "identifier", .parent = "interpolated_string_expression", .act = Act::kSkip},
    CodeRule{.node = "interpolated_string", .act = Act::kPass},
    CodeRule{.node = "character_literal", .act = Act::kScalar},
    CodeRule{.node = "integer_literal", .act = Act::kScalar},
    CodeRule{.node = "floating_point_literal", .act = Act::kScalar},
    CodeRule{.node = "boolean_literal", .act = Act::kScalar},

    CodeRule{
        .node = "identifier", .parent = "field_expression", .field = "field", .act = Act::kSkip},
    CodeRule{.node = "field_expression", .act = Act::kPath},
    CodeRule{.node = "identifier", .act = Act::kName},
};

// Words of the language, and types of its own that every file mentions, are no names of the file.
constexpr auto kSelf = std::to_array<std::string_view>(
    {"this",    "super",   "true", "false", "null",   "Any",    "AnyRef",
     "AnyVal",  "Boolean", "Int",  "Long",  "Double", "String", "Unit",
     "Nothing", "Nil",     "None", "Some",  "Left",   "Right"});

constexpr auto kTables = std::to_array<std::string_view>(
    {"Array", "IndexedSeq", "List", "ListMap", "Map", "Seq", "Set", "Vector"});

constexpr auto kOwnCalls = std::to_array<CallRule>({
    {"sys.env", Role::kReads},
    {"sys.env.get", Role::kReads},
    {"sys.env.getOrElse", Role::kReads},
    {"sys.props", Role::kReads},
    {"sys.props.get", Role::kReads},
    {"sys.props.getOrElse", Role::kReads},
    {"config.getBoolean", Role::kReads},
    {"config.getConfig", Role::kReads},
    {"config.getDuration", Role::kReads},
    {"config.getInt", Role::kReads},
    {"config.getLong", Role::kReads},
    {"config.getString", Role::kReads},
    {"config.getStringList", Role::kReads},
    {"config.get", Role::kReads},
    {"config.getOptional", Role::kReads},
    {"configuration.get", Role::kReads},
    {"configuration.getOptional", Role::kReads},
    {"intercept", Role::kCatches},
    {"assertThrows", Role::kCatches},
    {"classOf", Role::kLists},
});

constexpr auto kCalls = [] {
  std::array<CallRule, kOwnCalls.size() + jvm::kCalls.size()> all{};
  std::ranges::copy(jvm::kCalls, std::ranges::copy(kOwnCalls, all.begin()).out);
  return all;
}();

bool has_child(TSNode node, std::string_view type) {
  TreeCursor cursor(node);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) == type) return true;
  }
  return false;
}

bool has_modifier(const SourceTree& tree, TSNode node, std::string_view modifier) {
  return packaged::has_modifier(tree, node, modifier);
}

// Parameters of a class are its fields where they say so, and those of a case class always.
std::optional<std::string_view> name_of(const SourceTree& tree, TSNode node, TSNode name) {
  if (ts_node_is_null(name)) return std::nullopt;
  if (type_of(node) == "class_parameter" && !has_child(node, "val") && !has_child(node, "var")) {
    const TSNode holder = ts_node_parent(ts_node_parent(node));
    if (ts_node_is_null(holder) || !has_child(holder, "case")) return std::nullopt;
  }
  return tree.text(name);
}

bool exported(const SourceTree& tree, TSNode node, const Declaration&) {
  return !has_modifier(tree, node, "private");
}

bool is_abstract(const SourceTree& tree, TSNode node, const Declaration& as) {
  if (as.kind == DeclarationKind::kMethod) return type_of(node) == "function_declaration";
  return as.kind == DeclarationKind::kClass &&
         (has_modifier(tree, node, "abstract") || has_modifier(tree, node, "sealed"));
}

// What an object holds is no field of each value of a type.
void refine_value(TSNode node, Declaration& as) {
  if (as.kind == DeclarationKind::kField) {
    const TSNode holder = ts_node_parent(ts_node_parent(node));
    if (!ts_node_is_null(holder) && type_of(holder) == "object_definition") {
      as.kind = DeclarationKind::kVariable;
    }
  }
  const bool table = as.shape != ValueShape::kUnknown && as.shape != ValueShape::kInstance;
  if (as.kind == DeclarationKind::kVariable && table && packaged::is_type_like(as.name)) {
    as.kind = DeclarationKind::kConstant;
  }
}

bool refine(const SourceTree&, TSNode node, Declaration& as) {
  const std::string_view type = type_of(node);
  if (type == "class_parameter") as.kind = DeclarationKind::kField;
  if (type.starts_with("val_") || type.starts_with("var_")) refine_value(node, as);
  if (type == "class_definition" && has_child(node, "case")) as.kind = DeclarationKind::kRecord;
  return true;
}

}  // namespace

constinit const CodeRules scala_code = {.rules = kRules,
                                        .calls = kCalls,
                                        .self = kSelf,
                                        .tables = kTables,
                                        .members_in_scope = true,
                                        .extensions = true,
                                        .exported = exported,
                                        .is_abstract = is_abstract,
                                        .name_of = name_of,
                                        .key_of = jvm::key_of,
                                        .refine = refine};

}  // namespace kestrix::index
