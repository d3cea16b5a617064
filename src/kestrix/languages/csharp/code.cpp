#include "kestrix/languages/csharp/code.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr CodeRule bind(std::string_view node, std::string_view parent,
                        std::string_view field = {}) {
  return {.node = node, .parent = parent, .field = field, .act = Act::kBind};
}
constexpr CodeRule arguments_of(std::string_view parent) {
  return {.node = "argument_list", .parent = parent, .role = Role::kLists};
}
// A type is not named as one where a value of it is made, caught, extended.
constexpr CodeRule typed(std::string_view node, Act act, std::string_view field = {}) {
  return {.node = node, .field = field, .act = act, .role = Role::kType, .weak = true};
}
constexpr CodeRule in(std::string_view parent, std::string_view field, std::string_view node,
                      Act act, std::optional<Role> role) {
  return {.node = node, .parent = parent, .field = field, .act = act, .role = role};
}

constexpr std::array kRules = {
    skip("using_directive"),
    skip("extern_alias_directive"),
    skip("comment"),
    skip("attribute_target_specifier"),
    skip("goto_statement"),
    skip("identifier", "labeled_statement"),
    skip("", "namespace_declaration", "name"),
    skip("", "file_scoped_namespace_declaration", "name"),

    declare("class_declaration", DeclarationKind::kClass),
    declare("struct_declaration", DeclarationKind::kStruct),
    declare("record_declaration", DeclarationKind::kRecord),
    declare("interface_declaration", DeclarationKind::kInterface),
    declare("enum_declaration", DeclarationKind::kEnum),
    declare("delegate_declaration", DeclarationKind::kAlias),
    declare("method_declaration", DeclarationKind::kMethod),
    declare("local_function_statement", DeclarationKind::kFunction),
    declare("enum_member_declaration", DeclarationKind::kMember),
    declare("property_declaration", DeclarationKind::kVariable),
    declare("event_declaration", DeclarationKind::kVariable),
    declare("variable_declarator", DeclarationKind::kVariable),
    declare("parameter", DeclarationKind::kVariable),
    act("constructor_declaration", Act::kFunctionValue),
    act("destructor_declaration", Act::kFunctionValue),
    act("operator_declaration", Act::kFunctionValue),
    act("conversion_operator_declaration", Act::kFunctionValue),
    act("indexer_declaration", Act::kFunctionValue),
    act("accessor_declaration", Act::kFunctionValue),
    in("property_declaration", "", "arrow_expression_clause", Act::kFunctionValue, {}),
    act("lambda_expression", Act::kFunctionValue),
    act("anonymous_method_expression", Act::kFunctionValue),
    skip("identifier", "constructor_declaration", "name"),
    skip("identifier", "destructor_declaration", "name"),
    skip("identifier", "accessor_declaration", "name"),

    // Names that belong to a function.
    bind("identifier", "parameter_list", "name"),
    act("implicit_parameter", Act::kBind),
    CodeRule{
        .node = "identifier", .parent = "type_parameter", .field = "name", .act = Act::kBindType},
    bind("identifier", "foreach_statement", "left"),
    bind("identifier", "tuple_pattern"),
    bind("identifier", "declaration_expression", "name"),
    bind("identifier", "declaration_pattern", "name"),
    bind("identifier", "recursive_pattern", "name"),
    bind("identifier", "var_pattern", "name"),
    bind("identifier", "list_pattern", "name"),
    bind("identifier", "parenthesized_variable_designation", "name"),
    bind("identifier", "catch_declaration", "name"),
    bind("identifier", "from_clause", "name"),
    bind("identifier", "join_into_clause"),

    // Names of members whose type is not looked at.
    skip("identifier", "argument", "name"),
    skip("identifier", "attribute_argument", "name"),
    skip("identifier", "assignment_expression", "left"),
    skip("identifier", "anonymous_object_creation_expression"),
    skip("identifier", "with_initializer"),
    skip("identifier", "subpattern"),
    skip("identifier", "member_access_expression", "name"),
    skip("identifier", "member_binding_expression", "name"),
    skip("identifier", "type_parameter_constraints_clause"),
    in("member_access_expression", "name", "generic_name", Act::kMember, {}),
    in("member_binding_expression", "name", "generic_name", Act::kMember, {}),

    skip("base_list", "enum_declaration"),
    pass("base_list", Role::kExtends),
    act("primary_constructor_base_type", Act::kPass),
    pass("explicit_interface_specifier", Role::kType),
    CodeRule{.node = "attribute_list", .parent = "field_declaration", .ahead = true},
    CodeRule{.node = "attribute_list", .parent = "event_field_declaration", .ahead = true},
    CodeRule{.node = "attribute", .act = Act::kCall, .role = Role::kAnnotates, .value = ""},
    act("attribute_argument_list", Act::kPass),
    act("attribute_argument", Act::kPass),

    pass("throw_statement", Role::kThrows),
    pass("throw_expression", Role::kThrows),
    pass("catch_declaration", Role::kCatches),
    in("is_expression", "right", "identifier", Act::kName, Role::kCatches),
    in("is_expression", "right", "generic_name", Act::kPass, Role::kCatches),
    in("is_expression", "right", "qualified_name", Act::kPath, Role::kCatches),
    pass("declaration_pattern", Role::kCatches),
    pass("type_pattern", Role::kCatches),
    pass("recursive_pattern", Role::kCatches),
    pass("property_pattern_clause", Role::kUses),
    pass("positional_pattern_clause", Role::kUses),
    in("constant_pattern", "", "member_access_expression", Act::kPath, Role::kLists),
    pass("constant_pattern", Role::kCatches),
    // The grammar takes "x is Type || y" for "x is (Type || y)".
    in("binary_expression", "right", "identifier", Act::kName, Role::kUses),
    in("binary_expression", "right", "member_access_expression", Act::kPath, Role::kUses),

    CodeRule{.node = "invocation_expression",
             .act = Act::kCall,
             .name = "function",
             .value = "arguments"},
    CodeRule{.node = "object_creation_expression",
             .act = Act::kLiteral,
             .name = "type",
             .value = "initializer"},
    CodeRule{.node = "implicit_object_creation_expression",
             .act = Act::kLiteral,
             .name = "type",
             .value = "initializer"},
    act("array_creation_expression", Act::kPass),
    act("implicit_array_creation_expression", Act::kPass),
    in("initializer_expression", "", "initializer_expression", Act::kEntry, {}),
    act("initializer_expression", Act::kTable),
    in("initializer_expression", "", "assignment_expression", Act::kEntry, {}),
    in("initializer_expression", "", "tuple_expression", Act::kEntry, {}),
    act("collection_expression", Act::kTable),
    act("collection_element", Act::kEntry),
    act("expression_element", Act::kEntry),
    act("spread_element", Act::kEntry),
    CodeRule{.node = "element_access_expression",
             .act = Act::kSubscript,
             .name = "expression",
             .value = "subscript"},
    arguments_of("object_creation_expression"),
    arguments_of("implicit_object_creation_expression"),
    arguments_of("primary_constructor_base_type"),
    arguments_of("base_list"),
    arguments_of("constructor_initializer"),
    act("argument_list", Act::kPass),
    act("bracketed_argument_list", Act::kPass),
    act("argument", Act::kPass),
    act("parenthesized_expression", Act::kPass),

    in("typeof_expression", "", "identifier", Act::kName, {}),
    in("typeof_expression", "", "generic_name", Act::kPass, {}),
    in("typeof_expression", "", "qualified_name", Act::kPath, {}),
    act("typeof_expression", Act::kPass),
    in("as_expression", "right", "identifier", Act::kName, Role::kType),
    in("as_expression", "right", "generic_name", Act::kPass, Role::kType),
    in("as_expression", "right", "qualified_name", Act::kPath, Role::kType),
    in("array_creation_expression", "", "array_type", Act::kPass, Role::kType),
    typed("array_type", Act::kPass),
    typed("nullable_type", Act::kPass),
    typed("pointer_type", Act::kPass),
    typed("ref_type", Act::kPass),
    typed("scoped_type", Act::kPass),
    typed("tuple_type", Act::kPass),
    typed("tuple_element", Act::kPass),
    typed("identifier", Act::kName, "type"),
    typed("identifier", Act::kName, "returns"),
    typed("generic_name", Act::kPass, "type"),
    typed("generic_name", Act::kPass, "returns"),
    typed("qualified_name", Act::kPath, "type"),
    typed("qualified_name", Act::kPath, "returns"),
    typed("alias_qualified_name", Act::kPath, "type"),
    typed("alias_qualified_name", Act::kPath, "returns"),
    act("type_argument_list", Act::kTypeArguments),

    act("string_literal", Act::kString),
    act("verbatim_string_literal", Act::kString),
    act("raw_string_literal", Act::kString),
    pass("interpolated_string_expression", Role::kUses),
    act("character_literal", Act::kScalar),
    act("integer_literal", Act::kScalar),
    act("real_literal", Act::kScalar),
    act("boolean_literal", Act::kScalar),
    act("null_literal", Act::kScalar),

    act("member_access_expression", Act::kPath),
    act("qualified_name", Act::kPath),
    act("alias_qualified_name", Act::kPath),
    act("generic_name", Act::kPass),
    act("identifier", Act::kName),
};

constexpr std::array kCalls = {
    CallRule{"nameof", Role::kUses},
    CallRule{"Environment.GetEnvironmentVariable", Role::kReads},
    CallRule{"AppContext.TryGetSwitch", Role::kReads},
    CallRule{"AppSettings.Get", Role::kReads},
    CallRule{"BindConfiguration", Role::kReads},
    CallRule{"GetConnectionString", Role::kReads},
    CallRule{"GetRequiredSection", Role::kReads},
    CallRule{"GetSection", Role::kReads},
    CallRule{"GetValue", Role::kReads},
};

constexpr std::array<std::string_view, 5> kSettings = {"Configuration", "configuration",
                                                       "_configuration", "AppSettings", "config"};

constexpr auto kSelf = std::to_array<std::string_view>(
    {"this",    "base",  "_",      "bool", "byte",   "char",   "decimal", "double",
     "dynamic", "float", "int",    "long", "nameof", "nint",   "nuint",   "object",
     "sbyte",   "short", "string", "uint", "ulong",  "ushort", "value",   "var"});

// Methods that take in the types that they are given: services, middleware, options.
constexpr std::array<std::string_view, 8> kRegistering = {
    "Add", "Configure", "Decorate", "Map", "Register", "Replace", "TryAdd", "Use"};

bool registers(std::string_view method) {
  if (method == "Map") return false;  // converts
  return std::ranges::any_of(kRegistering,
                             [&](std::string_view word) { return method.starts_with(word); });
}

Role type_arguments(const SourceTree& tree, TSNode list, Role) {
  const TSNode name = ts_node_parent(list);
  if (type_of(name) != "generic_name" || !registers(tree.text(ts_node_child(name, 0)))) {
    return Role::kType;
  }
  const std::string_view around = type_of(ts_node_parent(name));
  const bool called = around == "member_access_expression" ||
                      around == "member_binding_expression" || around == "invocation_expression";
  return called ? Role::kLists : Role::kType;
}

bool names_members(TSNode initializer) {
  const TSNode first = ts_node_named_child(initializer, 0);
  if (ts_node_is_null(first)) return true;
  const auto left = field_of(first, "left");
  return left && type_of(*left) == "identifier";
}

// "new Type { Member = value }" names members, "new Table { [key] = value }" none.
bool keyed_by_member(TSNode literal) {
  const auto initializer = field_of(literal, "initializer");
  return !initializer || names_members(*initializer);
}

// What an array or a collection is made with says more of it than that it is made.
TSNode value_of(TSNode declaration) {
  TSNode value{};
  if (type_of(declaration) == "property_declaration") {
    value = field_of(declaration, "value").value_or(value);
  } else if (const std::uint32_t children = ts_node_named_child_count(declaration); children > 0) {
    const TSNode last = ts_node_named_child(declaration, children - 1);
    const auto name = field_of(declaration, "name");
    if (!name || name->id != last.id) value = last;
  }
  if (ts_node_is_null(value) || ts_node_named_child_count(value) == 0) return value;
  const TSNode last = ts_node_named_child(value, ts_node_named_child_count(value) - 1);
  const bool table = type_of(last) == "initializer_expression" && !names_members(last);
  return table ? last : value;
}

// The node that bears the modifiers of a declaration.
TSNode modified(TSNode declaration) {
  if (type_of(declaration) != "variable_declarator") return declaration;
  return ts_node_parent(ts_node_parent(declaration));
}

TSNode type_around(TSNode declaration) {
  return ts_node_parent(ts_node_parent(modified(declaration)));
}

bool is_in_interface(TSNode declaration) {
  return type_of(type_around(declaration)) == "interface_declaration";
}

bool has_code(const SourceTree& tree, TSNode property) {
  const auto accessors = field_of(property, "accessors");
  if (!accessors) return true;
  return tree.text(*accessors).find_first_of("{=", 1) != std::string_view::npos;
}

bool exported(const SourceTree& tree, TSNode declaration, const Declaration& as) {
  const std::string_view node = type_of(declaration);
  if (node == "local_function_statement") return false;
  if (node == "parameter") {
    return type_of(ts_node_parent(ts_node_parent(declaration))) == "record_declaration";
  }
  if (node == "enum_member_declaration") return true;
  const TSNode bearer = modified(declaration);
  for (const std::string_view wide : {"public", "internal", "protected"}) {
    if (packaged::has_modifier(tree, bearer, wide)) return true;
  }
  if (packaged::has_modifier(tree, bearer, "private")) return false;
  if (is_type(as.kind) && as.container == 0) return !packaged::has_modifier(tree, bearer, "file");
  return is_in_interface(declaration);
}

bool is_abstract(const SourceTree& tree, TSNode declaration, const Declaration& as) {
  if (is_type(as.kind)) return packaged::has_modifier(tree, declaration, "abstract");
  if (as.kind != DeclarationKind::kMethod) return false;
  if (packaged::has_modifier(tree, declaration, "abstract")) return true;
  if (!is_in_interface(declaration)) return false;
  if (type_of(declaration) == "property_declaration") return !has_code(tree, declaration);
  return !field_of(declaration, "body");
}

// Of a property without code of its own a value is held, unless it is to be implemented.
DeclarationKind kind_of_property(const SourceTree& tree, TSNode property) {
  const bool promised =
      is_in_interface(property) || packaged::has_modifier(tree, property, "abstract");
  return promised || has_code(tree, property) ? DeclarationKind::kMethod : DeclarationKind::kField;
}

bool refine_variable(const SourceTree& tree, TSNode declarator, Declaration& as) {
  const TSNode bearer = modified(declarator);
  const std::string_view node = type_of(bearer);
  if (node != "field_declaration" && node != "event_field_declaration") return false;
  const bool fixed = packaged::has_modifier(tree, bearer, "const") ||
                     (packaged::has_modifier(tree, bearer, "static") &&
                      packaged::has_modifier(tree, bearer, "readonly"));
  as.kind = fixed ? DeclarationKind::kConstant : DeclarationKind::kField;
  return true;
}

bool refine(const SourceTree& tree, TSNode declaration, Declaration& as) {
  const std::string_view node = type_of(declaration);
  if (node == "variable_declarator") return refine_variable(tree, declaration, as);
  if (node == "property_declaration") {
    as.kind = kind_of_property(tree, declaration);
  } else if (node == "event_declaration") {
    as.kind = DeclarationKind::kField;
  } else if (node == "parameter") {
    // Those of a type's head are its values.
    as.kind = DeclarationKind::kField;
    const TSNode holder = ts_node_parent(ts_node_parent(declaration));
    return as.container > 0 && type_of(holder) != "delegate_declaration";
  }
  return true;
}

bool is_interface_name(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('.') + 1);
  return name.size() > 2 && name[0] == 'I' && ascii::is_upper(name[1]);
}

// Which bases are interfaces their names tell, where nothing of the repository declares them.
void finish(FileFacts& facts) {
  constexpr std::string_view kGlobal = "global.";
  for (Mention& mention : facts.mentions) {
    if (mention.name.starts_with(kGlobal)) mention.name.erase(0, kGlobal.size());
    if (mention.role != Role::kExtends || mention.within == 0) continue;
    const DeclarationKind holder = facts.declarations[mention.within - 1].kind;
    const bool contract =
        holder == DeclarationKind::kInterface || holder == DeclarationKind::kStruct;
    if (contract || is_interface_name(mention.name)) mention.role = Role::kImplements;
  }
}

}  // namespace

constinit const CodeRules csharp_code = {.rules = kRules,
                                         .calls = kCalls,
                                         .self = kSelf,
                                         .keyed_settings = kSettings,
                                         .open_calls = true,
                                         .members_in_scope = true,
                                         .keyed_by_member = keyed_by_member,
                                         .type_arguments = type_arguments,
                                         .exported = exported,
                                         .is_abstract = is_abstract,
                                         .refine = refine,
                                         .value_of = value_of,
                                         .finish = finish};

}  // namespace kestrix::index
