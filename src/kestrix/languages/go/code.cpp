#include "kestrix/languages/go/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    skip("package_clause"),
    skip("import_declaration"),
    skip("comment"),

    CodeRule{.node = "type_spec",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kAlias,
             .value = "type"},
    CodeRule{.node = "type_alias",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kAlias,
             .value = "type"},
    declare("function_declaration", DeclarationKind::kFunction),
    declare("method_declaration", DeclarationKind::kMethod),
    declare("method_elem", DeclarationKind::kMethod),
    declare("const_spec", DeclarationKind::kConstant),
    declare("var_spec", DeclarationKind::kVariable),
    // A field without a name embeds its type.
    CodeRule{.node = "field_declaration",
             .act = Act::kDeclare,
             .role = Role::kExtends,
             .kind = DeclarationKind::kField},
    CodeRule{
        .node = "type_elem", .parent = "interface_type", .act = Act::kPass, .role = Role::kExtends},
    pass("type_elem"),
    act("func_literal", Act::kFunctionValue),

    // Names that belong to a function.
    CodeRule{.node = "identifier",
             .parent = "parameter_declaration",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "variadic_parameter_declaration",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "type_parameter_declaration",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "expression_list",
             .parent = "short_var_declaration",
             .field = "left",
             .act = Act::kBindBehind},
    CodeRule{.node = "expression_list",
             .parent = "range_clause",
             .field = "left",
             .act = Act::kBindBehind},
    CodeRule{.node = "expression_list",
             .parent = "receive_statement",
             .field = "left",
             .act = Act::kBind},
    CodeRule{.node = "expression_list",
             .parent = "type_switch_statement",
             .field = "alias",
             .act = Act::kBind},

    // What errors are returned and told apart.
    CodeRule{.node = "return_statement",
             .act = Act::kPass,
             .role = Role::kUses,
             .errors = Role::kThrows},
    CodeRule{.node = "binary_expression",
             .act = Act::kPass,
             .role = Role::kUses,
             .errors = Role::kCatches},
    CodeRule{.node = "expression_list",
             .parent = "expression_case",
             .act = Act::kPass,
             .role = Role::kLists,
             .errors = Role::kCatches},
    pass("statement_list", Role::kUses),
    pass("block", Role::kUses),
    pass("expression_list"),
    CodeRule{.node = "type_identifier",
             .parent = "type_case",
             .act = Act::kName,
             .role = Role::kCatches},
    CodeRule{
        .node = "qualified_type", .parent = "type_case", .act = Act::kPath, .role = Role::kCatches},
    CodeRule{
        .node = "pointer_type", .parent = "type_case", .act = Act::kPass, .role = Role::kCatches},
    CodeRule{.node = "type_identifier",
             .parent = "type_assertion_expression",
             .act = Act::kName,
             .role = Role::kCatches},
    CodeRule{.node = "qualified_type",
             .parent = "type_assertion_expression",
             .act = Act::kPath,
             .role = Role::kCatches},
    CodeRule{.node = "pointer_type",
             .parent = "type_assertion_expression",
             .act = Act::kPass,
             .role = Role::kCatches},

    CodeRule{
        .node = "call_expression", .act = Act::kCall, .name = "function", .value = "arguments"},
    pass("argument_list"),
    CodeRule{
        .node = "index_expression", .act = Act::kSubscript, .name = "operand", .value = "index"},
    act("type_arguments", Act::kTypeArguments),
    pass("unary_expression"),
    pass("parenthesized_expression"),
    pass("variadic_argument"),

    CodeRule{.node = "composite_literal", .act = Act::kLiteral, .name = "type", .value = "body"},
    CodeRule{.node = "literal_value", .parent = "composite_literal", .act = Act::kTable},
    CodeRule{.node = "literal_value", .act = Act::kLiteral, .name = "type", .value = "body"},
    CodeRule{
        .node = "literal_element", .parent = "keyed_element", .field = "key", .act = Act::kKey},
    act("literal_element", Act::kEntry),
    act("keyed_element", Act::kEntry),

    pass("pointer_type"),
    pass("generic_type"),
    pass("parenthesized_type"),
    pass("slice_type", Role::kType),
    pass("array_type", Role::kType),
    pass("implicit_length_array_type", Role::kType),
    pass("map_type", Role::kType),
    pass("channel_type", Role::kType),
    pass("function_type", Role::kType),
    CodeRule{.node = "type_identifier", .act = Act::kName, .role = Role::kType, .weak = true},
    CodeRule{.node = "qualified_type", .act = Act::kPath, .role = Role::kType, .weak = true},

    skip("raw_string_literal", "field_declaration"),
    skip("interpreted_string_literal", "field_declaration"),
    act("interpreted_string_literal", Act::kString),
    act("raw_string_literal", Act::kString),
    scalar("rune_literal"),
    scalar("int_literal"),
    scalar("float_literal"),
    scalar("imaginary_literal"),
    scalar("true"),
    scalar("false"),
    scalar("nil"),
    scalar("iota"),

    skip("field_identifier"),
    act("selector_expression", Act::kPath),
    act("identifier", Act::kName),
};

constexpr std::array kCalls = {
    CallRule{"errors.Is", Role::kCatches},
    CallRule{"errors.As", Role::kCatches},
    CallRule{"new", Role::kConstructs},
    CallRule{"os.Getenv", Role::kReads},
    CallRule{"os.LookupEnv", Role::kReads},
    CallRule{"viper.Get", Role::kReads},
    CallRule{"viper.GetBool", Role::kReads},
    CallRule{"viper.GetDuration", Role::kReads},
    CallRule{"viper.GetInt", Role::kReads},
    CallRule{"viper.GetString", Role::kReads},
    CallRule{"viper.GetStringSlice", Role::kReads},
    CallRule{"flag.Bool", Role::kReads},
    CallRule{"flag.Duration", Role::kReads},
    CallRule{"flag.Int", Role::kReads},
    CallRule{"flag.String", Role::kReads},
};

// What the language declares itself is no name of the file, either.
constexpr auto kSelf = std::to_array<std::string_view>(
    {"_",       "any",     "bool",   "byte",   "comparable", "complex128", "complex64", "error",
     "float32", "float64", "int",    "int16",  "int32",      "int64",      "int8",      "rune",
     "string",  "uint",    "uint16", "uint32", "uint64",     "uint8",      "uintptr"});

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }

// "ErrNotFound", "errNotFound", and of types "NotFoundError", too.
bool is_error(std::string_view path, Role role) {
  const std::string_view name = path.substr(path.rfind('.') + 1);
  const bool variable =
      (name.starts_with("Err") || name.starts_with("err")) && name.size() > 3 && is_upper(name[3]);
  return variable || (role == Role::kConstructs && name.ends_with("Error"));
}

bool keyed_by_member(TSNode literal) {
  const auto type = field_of(literal, "type");
  if (!type) return true;  // of a type that the literal around it tells: of a struct, mostly
  const std::string_view kind = type_of(*type);
  return kind != "map_type" && kind != "slice_type" && kind != "array_type" &&
         kind != "implicit_length_array_type";
}

// The name of a type without what makes it a pointer or an instance of a generic type.
std::string_view bare_type(const SourceTree& tree, TSNode type) {
  for (int depth = 0; depth < 4; ++depth) {
    const std::string_view kind = type_of(type);
    if (kind == "type_identifier") return tree.text(type);
    if (kind != "pointer_type" && kind != "generic_type" && kind != "parenthesized_type") return {};
    type = ts_node_named_child(type, 0);
  }
  return {};
}

std::string_view owner(const SourceTree& tree, TSNode method) {
  const auto receiver = field_of(method, "receiver");
  if (!receiver || ts_node_named_child_count(*receiver) == 0) return {};
  const auto type = field_of(ts_node_named_child(*receiver, 0), "type");
  return type ? bare_type(tree, *type) : std::string_view();
}

// Of "T{}", "&T{}", "(*T)(nil)" and "new(T)" the type.
std::string_view made_type(const SourceTree& tree, TSNode value) {
  for (int depth = 0; depth < 8; ++depth) {
    const std::string_view kind = type_of(value);
    if (kind == "composite_literal") {
      const auto type = field_of(value, "type");
      return type ? bare_type(tree, *type) : std::string_view();
    }
    if (kind == "type_identifier" || kind == "identifier") return tree.text(value);
    if (kind == "call_expression") {
      const auto callee = field_of(value, "function");
      const auto arguments = field_of(value, "arguments");
      if (!callee || !arguments) return {};
      value = tree.text(*callee) == "new" ? *arguments : *callee;
      if (type_of(value) == "identifier") return {};
    } else if (kind == "type_conversion_expression") {
      value = *field_of(value, "type");
    } else if (ts_node_named_child_count(value) == 0 || kind == "selector_expression") {
      return {};
    } else {
      value = ts_node_named_child(value, 0);
    }
  }
  return {};
}

// "var _ Base = T{}"
std::optional<Claim> claim(const SourceTree& tree, TSNode variable) {
  const auto base = field_of(variable, "type");
  const auto value = field_of(variable, "value");
  if (!base || !value) return std::nullopt;
  const std::string_view type = made_type(tree, *value);
  if (type.empty()) return std::nullopt;
  return Claim{type, tree.text(*base)};
}

bool exported(const SourceTree&, TSNode, const Declaration& as) {
  return is_upper(as.name.front()) || static_cast<unsigned char>(as.name.front()) >= 0x80;
}

// Names that share a type are parameters each.
std::uint32_t parameters_of(TSNode method) {
  const auto parameters = field_of(method, "parameters");
  if (!parameters) return 0;
  std::uint32_t count = 0;
  TreeCursor cursor(*parameters);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (!ts_node_is_named(cursor.node()) || ts_node_is_extra(cursor.node())) continue;
    std::uint32_t names = 0;
    TreeCursor name(cursor.node());
    for (bool next = name.to_first_child(); next; next = name.to_next_sibling()) {
      if (type_of(name.node()) == "identifier") ++names;
    }
    count += std::max(names, 1U);
  }
  return count;
}

bool refine(const SourceTree&, TSNode declaration, Declaration& as) {
  if (as.kind == DeclarationKind::kMethod) as.size = parameters_of(declaration);
  if (as.name == "_" || (as.name == "init" && as.kind == DeclarationKind::kFunction)) return false;
  if (as.kind == DeclarationKind::kConstant && type_of(declaration) == "var_spec") {
    as.kind = DeclarationKind::kVariable;  // its habits of writing do not tell constants
  }
  if (type_of(declaration) != "type_spec") return true;
  const auto type = field_of(declaration, "type");
  const std::string_view kind = type ? type_of(*type) : std::string_view();
  if (kind == "struct_type") as.kind = DeclarationKind::kStruct;
  if (kind == "interface_type") as.kind = DeclarationKind::kInterface;
  return true;
}

}  // namespace

constinit const CodeRules go_code = {.rules = kRules,
                                     .calls = kCalls,
                                     .self = kSelf,
                                     .is_error = is_error,
                                     .keyed_by_member = keyed_by_member,
                                     .owner = owner,
                                     .claim = claim,
                                     .exported = exported,
                                     .refine = refine};

}  // namespace kestrix::index
