#include "kestrix/languages/scala/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/jvm/calls.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    skip("package_identifier"),
    skip("import_declaration"),
    skip("export_declaration"),
    skip("comment"),
    skip("block_comment"),

    declare("class_definition", DeclarationKind::kClass),
    declare("object_definition", DeclarationKind::kObject),
    declare("trait_definition", DeclarationKind::kTrait),
    declare("enum_definition", DeclarationKind::kEnum),
    declare("package_object", DeclarationKind::kModule),
    declare("simple_enum_case", DeclarationKind::kMember),
    declare("full_enum_case", DeclarationKind::kMember),
    declare("type_definition", DeclarationKind::kAlias),
    declare("function_definition", DeclarationKind::kFunction),
    declare("function_declaration", DeclarationKind::kFunction),
    CodeRule{.node = "val_definition",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable,
             .name = "pattern"},
    CodeRule{.node = "var_definition",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable,
             .name = "pattern"},
    declare("val_declaration", DeclarationKind::kVariable),
    declare("var_declaration", DeclarationKind::kVariable),
    declare("given_definition", DeclarationKind::kVariable),
    declare("class_parameter", DeclarationKind::kVariable),
    CodeRule{.node = "template_body", .parent = "instance_expression", .act = Act::kNameless},
    act("block", Act::kFunctionValue),
    act("indented_block", Act::kFunctionValue),
    act("lambda_expression", Act::kFunctionValue),
    act("case_block", Act::kFunctionValue),
    act("case_clause", Act::kScope),

    // Of a class or a trait, as the declaration turns out to be.
    CodeRule{
        .node = "arguments", .parent = "extends_clause", .act = Act::kPass, .role = Role::kLists},
    pass("extends_clause", Role::kExtends),
    pass("derives_clause", Role::kAnnotates),
    CodeRule{.node = "arguments", .parent = "annotation", .act = Act::kPass, .role = Role::kUses},
    pass("annotation", Role::kAnnotates),
    skip("identifier", "self_type"),
    skip("identifier", "access_qualifier"),

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
    skip("identifier", "named_pattern"),
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
    act("stable_identifier", Act::kPath),
    skip("identifier", "stable_identifier"),

    pass("throw_expression", Role::kThrows),
    pass("typed_pattern", Role::kCatches),
    pass("case_class_pattern", Role::kCatches),

    CodeRule{
        .node = "call_expression", .act = Act::kCall, .name = "function", .value = "arguments"},
    CodeRule{.node = "generic_function",
             .act = Act::kGeneric,
             .name = "function",
             .value = "type_arguments"},
    CodeRule{
        .node = "instance_expression", .act = Act::kConstruct, .name = "", .value = "arguments"},
    pass("arguments"),
    CodeRule{.node = "assignment_expression", .parent = "arguments", .act = Act::kEntry},
    act("tuple_expression", Act::kEntry),
    pass("infix_expression"),
    skip("identifier", "infix_expression", "operator"),
    pass("parenthesized_expression"),
    pass("postfix_expression"),
    pass("ascription_expression"),

    CodeRule{.node = "type_arguments", .parent = "generic_function", .act = Act::kPass},
    act("type_arguments", Act::kTypeArguments),
    pass("generic_type"),
    pass("compound_type"),
    pass("infix_type"),
    pass("function_type", Role::kType),
    skip("operator_identifier"),
    skip("type_identifier", "stable_type_identifier"),
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

    act("string", Act::kString),
    act("interpolated_string_expression", Act::kString),
    skip("identifier", "interpolated_string_expression"),
    pass("interpolated_string"),
    scalar("character_literal"),
    scalar("integer_literal"),
    scalar("floating_point_literal"),
    scalar("boolean_literal"),

    skip("identifier", "field_expression", "field"),
    act("field_expression", Act::kPath),
    act("identifier", Act::kName),
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
