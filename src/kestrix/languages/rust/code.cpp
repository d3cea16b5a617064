#include "kestrix/languages/rust/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/rust/attributes.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr CodeRule declared(std::string_view node, DeclarationKind kind,
                            std::string_view value = "value") {
  return {.node = node, .act = Act::kDeclare, .kind = kind, .value = value};
}
// A name in a pattern: one of the function's own, or a constant or variant.
constexpr CodeRule pattern(std::string_view parent, std::string_view field = {}) {
  return {.node = "identifier", .parent = parent, .field = field, .act = Act::kPattern};
}
// The type that a pattern takes apart.
constexpr CodeRule taken(std::string_view node, Act act, std::string_view parent) {
  return {.node = node, .parent = parent, .field = "type", .act = act};
}

constexpr std::array kRules = {
    skip("line_comment"),
    skip("block_comment"),
    skip("use_declaration"),
    skip("extern_crate_declaration"),
    skip("visibility_modifier"),
    skip("inner_attribute_item"),
    skip("lifetime"),
    skip("label"),
    skip("shebang"),

    declared("struct_item", DeclarationKind::kStruct),
    declared("union_item", DeclarationKind::kStruct),
    declared("enum_item", DeclarationKind::kEnum),
    declared("trait_item", DeclarationKind::kTrait),
    declared("enum_variant", DeclarationKind::kMember),
    declared("field_declaration", DeclarationKind::kField),
    declared("function_item", DeclarationKind::kFunction),
    declared("function_signature_item", DeclarationKind::kFunction),
    declared("const_item", DeclarationKind::kConstant),
    declared("static_item", DeclarationKind::kConstant),
    declared("macro_definition", DeclarationKind::kMacro),
    declared("mod_item", DeclarationKind::kModule),
    skip("type_identifier", "type_item", "name"),
    // One of a trait or an implementation is known by theirs alone.
    CodeRule{
        .node = "type_item", .parent = "declaration_list", .act = Act::kPass, .role = Role::kType},
    declared("type_item", DeclarationKind::kAlias, "type"),
    skip("type_identifier", "associated_type", "name"),
    act("impl_item", Act::kMembers),
    CodeRule{.node = "generic_type",
             .parent = "impl_item",
             .field = "trait",
             .act = Act::kPass,
             .role = Role::kImplements},
    CodeRule{.node = "type_identifier",
             .parent = "impl_item",
             .field = "trait",
             .act = Act::kName,
             .role = Role::kImplements},
    CodeRule{.node = "scoped_type_identifier",
             .parent = "impl_item",
             .field = "trait",
             .act = Act::kPath,
             .role = Role::kImplements},
    CodeRule{.node = "trait_bounds",
             .parent = "trait_item",
             .act = Act::kPass,
             .role = Role::kImplements},
    CodeRule{.node = "attribute_item", .act = Act::kPass, .role = Role::kAnnotates, .ahead = true},
    CodeRule{.node = "attribute", .act = Act::kCall, .name = "", .value = "arguments"},
    act("closure_expression", Act::kFunctionValue),

    // Names that belong to a function.
    CodeRule{.node = "identifier",
             .parent = "let_declaration",
             .field = "pattern",
             .act = Act::kBindBehind},
    CodeRule{
        .node = "identifier", .parent = "tuple_struct_pattern", .field = "type", .act = Act::kName},
    pattern("parameter", "pattern"),
    pattern("closure_parameters"),
    pattern("for_expression", "pattern"),
    pattern("let_condition", "pattern"),
    pattern("match_pattern"),
    pattern("tuple_struct_pattern"),
    pattern("tuple_pattern"),
    pattern("slice_pattern"),
    pattern("or_pattern"),
    pattern("captured_pattern"),
    pattern("mut_pattern"),
    pattern("ref_pattern"),
    pattern("reference_pattern"),
    pattern("field_pattern", "pattern"),
    pattern("const_parameter", "name"),
    act("shorthand_field_identifier", Act::kBind),
    CodeRule{
        .node = "type_identifier", .parent = "type_parameter", .field = "name", .act = Act::kBind},

    // What a value is told apart by.
    CodeRule{
        .node = "match_pattern", .act = Act::kPass, .role = Role::kLists, .errors = Role::kCatches},
    CodeRule{.node = "",
             .parent = "let_condition",
             .field = "pattern",
             .act = Act::kPass,
             .role = Role::kUses,
             .errors = Role::kCatches},
    taken("type_identifier", Act::kName, "struct_pattern"),
    taken("scoped_type_identifier", Act::kPath, "struct_pattern"),
    pass("tuple_struct_pattern"),
    pass("struct_pattern"),
    pass("tuple_pattern"),
    pass("slice_pattern"),
    pass("or_pattern"),
    pass("captured_pattern"),
    pass("mut_pattern"),
    pass("ref_pattern"),
    pass("reference_pattern"),
    pass("field_pattern"),

    CodeRule{
        .node = "call_expression", .act = Act::kCall, .name = "function", .value = "arguments"},
    // The tokens of a macro have no field.
    CodeRule{.node = "macro_invocation", .act = Act::kCall, .name = "macro", .value = ""},
    pass("generic_function"),
    pass("arguments"),
    act("type_arguments", Act::kTypeArguments),
    CodeRule{.node = "struct_expression", .act = Act::kLiteral, .value = "body"},
    pass("generic_type_with_turbofish"),
    pass("field_initializer_list"),
    pass("field_initializer"),
    pass("shorthand_field_initializer"),
    act("array_expression", Act::kTable),
    act("tuple_expression", Act::kEntry),
    pass("reference_expression"),
    pass("parenthesized_expression"),
    pass("try_expression"),
    pass("await_expression"),
    pass("block", Role::kUses),
    pass("expression_statement", Role::kUses),

    pass("generic_type"),
    pass("reference_type", Role::kType),
    pass("pointer_type", Role::kType),
    pass("array_type", Role::kType),
    pass("tuple_type", Role::kType),
    pass("function_type", Role::kType),
    pass("dynamic_type", Role::kType),
    pass("abstract_type", Role::kType),
    CodeRule{.node = "trait_bounds", .act = Act::kPass, .role = Role::kType, .weak = true},
    CodeRule{.node = "type_identifier", .act = Act::kName, .role = Role::kType, .weak = true},
    CodeRule{
        .node = "scoped_type_identifier", .act = Act::kPath, .role = Role::kType, .weak = true},

    skip("token_tree_pattern"),
    pass("macro_rule", Role::kUses),
    pass("token_tree"),
    pass("token_repetition"),
    CodeRule{.node = "identifier", .parent = "token_tree", .act = Act::kToken},
    CodeRule{.node = "identifier", .parent = "token_repetition", .act = Act::kToken},

    act("string_literal", Act::kString),
    act("raw_string_literal", Act::kString),
    scalar("char_literal"),
    scalar("boolean_literal"),
    scalar("integer_literal"),
    scalar("float_literal"),
    scalar("negative_literal"),

    skip("field_identifier"),
    skip("identifier", "scoped_identifier", "name"),
    skip("type_identifier", "scoped_type_identifier", "name"),
    act("scoped_identifier", Act::kPath),
    act("identifier", Act::kName),
};

constexpr std::array kCalls = {
    CallRule{.callee = "derive", .role = Role::kAnnotates},
    CallRule{.callee = "Err", .role = Role::kThrows},
    CallRule{.callee = "ok_or", .role = Role::kThrows},
    CallRule{.callee = "ok_or_else", .role = Role::kThrows},
    CallRule{.callee = "map_err", .role = Role::kThrows},
    CallRule{.callee = "bail", .role = Role::kThrows},
    CallRule{.callee = "downcast", .role = Role::kCatches},
    CallRule{.callee = "matches", .role = Role::kLists},
    CallRule{.callee = "env.var", .role = Role::kReads},
    CallRule{.callee = "env.var_os", .role = Role::kReads},
    CallRule{.callee = "var", .role = Role::kReads},
    CallRule{.callee = "var_os", .role = Role::kReads},
    CallRule{.callee = "env", .role = Role::kReads, .sole = true},
    CallRule{.callee = "option_env", .role = Role::kReads},
    CallRule{.callee = "Environment.with_prefix", .role = Role::kReads},
    CallRule{.callee = "Env.prefixed", .role = Role::kReads},
    CallRule{.callee = "envy.prefixed", .role = Role::kReads},
};

constexpr auto kSelf = std::to_array<std::string_view>(
    {"self", "Self", "_", "Box", "Err", "None", "Ok", "Some", "String", "Vec"});
// "#[arg(env = "KEY")]"
constexpr auto kKeys = std::to_array<std::string_view>({"env"});

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }

// The type says so: "AppError", "AppError::NotFound", "io::ErrorKind::NotFound".
bool is_error(std::string_view path, Role) {
  const std::size_t variant = path.rfind('.');
  if (variant != std::string_view::npos) {
    const std::string_view before = path.substr(0, variant);
    if (is_upper(before.substr(before.rfind('.') + 1).front())) path = before;
  }
  path = path.substr(path.rfind('.') + 1);
  for (std::size_t at = path.find("Err"); at != std::string_view::npos;
       at = path.find("Err", at + 1)) {
    const std::string_view rest = path.substr(at + 3);
    if (rest.starts_with("or") || rest.empty() || rest.front() == '.' || is_upper(rest.front()))
      return true;
  }
  return false;
}

// The name of a type without what it refers to it by and without its arguments.
std::string_view owner(const SourceTree& tree, TSNode implementation) {
  auto type =
      type_of(implementation) == "impl_item" ? field_of(implementation, "type") : std::nullopt;
  for (int depth = 0; depth < 4 && type; ++depth) {
    const std::string_view kind = type_of(*type);
    if (kind == "type_identifier") return tree.text(*type);
    if (kind == "scoped_type_identifier") {
      type = field_of(*type, "name");
    } else if (kind == "generic_type" || kind == "reference_type") {
      type = field_of(*type, "type");
    } else {
      return {};
    }
  }
  return {};
}

// Tests stand beside what they test.
std::optional<std::string_view> name_of(const SourceTree& tree, TSNode node, TSNode name) {
  if (ts_node_is_null(name)) return std::nullopt;
  const std::string_view kind = type_of(node);
  const bool item = kind == "mod_item" || kind == "function_item";
  if (item && rust::is_for_tests(tree.text().substr(0, ts_node_start_byte(node)))) return "";
  return tree.text(name);
}

bool exported(const SourceTree& tree, TSNode declaration, const Declaration& as) {
  if (as.kind == DeclarationKind::kMember || as.kind == DeclarationKind::kMacro) return true;
  if (type_of(declaration) == "function_signature_item") return true;
  const TSNode first = ts_node_named_child(declaration, 0);
  return !ts_node_is_null(first) && type_of(first) == "visibility_modifier" &&
         tree.text(first).starts_with("pub");
}

bool refine(const SourceTree&, TSNode declaration, Declaration& as) {
  if (type_of(declaration) == "static_item" && ts_node_named_child_count(declaration) > 1) {
    bool changes = false;
    for_each_child(declaration, [&](TSNode child, std::string_view) {
      changes |= type_of(child) == "mutable_specifier";
    });
    if (changes) as.kind = DeclarationKind::kVariable;
  }
  return as.name != "_";
}

}  // namespace

constinit const CodeRules rust_code = {.rules = kRules,
                                       .calls = kCalls,
                                       .self = kSelf,
                                       .key_words = kKeys,
                                       .thrown_types = true,
                                       .paths_outside = true,
                                       .is_error = is_error,
                                       .owner = owner,
                                       .exported = exported,
                                       .name_of = name_of,
                                       .refine = refine,
                                       .finish = rust::drop_plain_attributes};

}  // namespace kestrix::index
