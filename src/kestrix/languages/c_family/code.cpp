#include "kestrix/languages/c_family/code.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kestrix/languages/c_family/naming.h"
#include "kestrix/languages/code/rule_shapes.h"

namespace kestrix::index {
namespace {

constexpr CodeRule bound(std::string_view parent) {
  return {.node = "identifier", .parent = parent, .field = "declarator", .act = Act::kBind};
}
constexpr CodeRule bound_in(std::string_view parent, std::string_view node = "identifier") {
  return {.node = node, .parent = parent, .act = Act::kBind};
}
// A type that is written out where it is used, with a body or without.
constexpr CodeRule written_type(std::string_view node, DeclarationKind kind) {
  return {.node = node, .field = "type", .act = Act::kDeclare, .role = Role::kType, .kind = kind};
}
// Declarators of all shapes; "" for those that no other rule knows.
constexpr CodeRule declarator(std::string_view node, std::string_view parent,
                              DeclarationKind kind = DeclarationKind::kVariable) {
  return {
      .node = node, .parent = parent, .field = "declarator", .act = Act::kDeclare, .kind = kind};
}

constexpr std::array kCommon = {
    skip("comment"),
    skip("preproc_include"),
    skip("preproc_call"),
    skip("preproc_arg"),
    skip("preproc_params"),
    skip("attribute_specifier"),
    skip("attribute_declaration"),
    skip("ms_declspec_modifier"),
    skip("gnu_asm_expression"),

    declare("preproc_def", DeclarationKind::kMacro),
    declare("preproc_function_def", DeclarationKind::kMacro),
    written_type("struct_specifier", DeclarationKind::kStruct),
    written_type("union_specifier", DeclarationKind::kStruct),
    written_type("enum_specifier", DeclarationKind::kEnum),
    declare("struct_specifier", DeclarationKind::kStruct),
    declare("union_specifier", DeclarationKind::kStruct),
    declare("enum_specifier", DeclarationKind::kEnum),
    declare("enumerator", DeclarationKind::kMember),
    declare("function_definition", DeclarationKind::kFunction),
    declarator("identifier", "declaration"),
    declarator("field_identifier", "field_declaration"),
    declarator("type_identifier", "type_definition", DeclarationKind::kAlias),
    declarator("", "declaration"),
    declarator("", "field_declaration"),
    declarator("", "type_definition", DeclarationKind::kAlias),

    // Names that belong to a function.
    bound("parameter_declaration"),
    bound("init_declarator"),
    bound("pointer_declarator"),
    bound("array_declarator"),
    bound("function_declarator"),
    bound_in("parenthesized_declarator"),
    bound_in("attributed_declarator"),

    CodeRule{.node = "compound_statement", .act = Act::kScope, .role = Role::kUses},
    CodeRule{.node = "for_statement", .act = Act::kScope, .role = Role::kUses},

    // "struct name" announces the type, or stands for it.
    CodeRule{.node = "type_identifier",
             .parent = "struct_specifier",
             .field = "name",
             .act = Act::kName},
    CodeRule{
        .node = "type_identifier", .parent = "union_specifier", .field = "name", .act = Act::kName},
    CodeRule{
        .node = "type_identifier", .parent = "enum_specifier", .field = "name", .act = Act::kName},

    CodeRule{.node = "identifier",
             .parent = "case_statement",
             .field = "value",
             .act = Act::kName,
             .role = Role::kLists},
    CodeRule{
        .node = "call_expression", .act = Act::kCall, .name = "function", .value = "arguments"},
    pass("argument_list"),
    pass("parenthesized_expression"),
    pass("pointer_expression"),
    pass("cast_expression"),
    CodeRule{.node = "compound_literal_expression",
             .act = Act::kLiteral,
             .name = "type",
             .value = "value"},
    act("initializer_list", Act::kTable),
    act("initializer_pair", Act::kEntry),
    pass("subscript_designator", Role::kUses),

    CodeRule{.node = "type_descriptor", .act = Act::kPass, .role = Role::kType, .weak = true},
    pass("concatenated_string", Role::kUses),
    act("string_literal", Act::kString),
    scalar("char_literal"),
    scalar("number_literal"),
    scalar("true"),
    scalar("false"),
    scalar("null"),

    skip("field_identifier"),
    act("field_expression", Act::kPath),
};

constexpr std::array kOnlyCpp = {
    skip("namespace_alias_definition"),
    skip("namespace_identifier"),
    declare("namespace_definition", DeclarationKind::kModule),
    written_type("class_specifier", DeclarationKind::kClass),
    declare("class_specifier", DeclarationKind::kClass),
    declare("alias_declaration", DeclarationKind::kAlias),
    declare("concept_definition", DeclarationKind::kTrait),
    declarator("qualified_identifier", "declaration"),
    act("template_declaration", Act::kScope),
    CodeRule{.node = "for_range_loop", .act = Act::kScope, .role = Role::kUses},
    CodeRule{.node = "catch_clause", .act = Act::kScope, .role = Role::kUses},
    act("lambda_expression", Act::kFunctionValue),
    // A friend is no member.
    CodeRule{.node = "declaration", .parent = "friend_declaration", .act = Act::kFunctionValue},

    bound("optional_parameter_declaration"),
    bound("for_range_loop"),
    bound_in("reference_declarator"),
    bound_in("variadic_declarator"),
    bound_in("structured_binding_declarator"),
    CodeRule{
        .node = "type_identifier", .parent = "type_parameter_declaration", .act = Act::kBindType},
    CodeRule{.node = "type_identifier",
             .parent = "variadic_type_parameter_declaration",
             .act = Act::kBindType},
    CodeRule{.node = "type_identifier",
             .parent = "optional_type_parameter_declaration",
             .field = "name",
             .act = Act::kBindType},
    CodeRule{.node = "identifier",
             .parent = "lambda_capture_initializer",
             .field = "left",
             .act = Act::kBind},

    CodeRule{
        .node = "type_identifier", .parent = "class_specifier", .field = "name", .act = Act::kName},
    pass("base_class_clause", Role::kExtends),
    pass("throw_statement", Role::kThrows),
    CodeRule{.node = "parameter_list",
             .parent = "catch_clause",
             .act = Act::kPass,
             .role = Role::kCatches},
    pass("parameter_declaration"),
    CodeRule{.node = "argument_list",
             .parent = "field_initializer",
             .act = Act::kPass,
             .role = Role::kLists},
    CodeRule{.node = "initializer_list",
             .parent = "field_initializer",
             .act = Act::kPass,
             .role = Role::kLists},
    CodeRule{
        .node = "new_expression", .act = Act::kConstruct, .name = "type", .value = "arguments"},

    // Paths; of one that holds type arguments the parts are told apart below it.
    CodeRule{.node = "qualified_identifier",
             .parent = "qualified_identifier",
             .field = "name",
             .act = Act::kPass},
    skip("identifier", "qualified_identifier", "name"),
    skip("type_identifier", "qualified_identifier", "name"),
    skip("qualified_identifier", "function_declarator", "declarator"),
    skip("qualified_identifier", "init_declarator", "declarator"),
    skip("qualified_identifier", "pointer_declarator", "declarator"),
    skip("qualified_identifier", "array_declarator", "declarator"),
    CodeRule{.node = "qualified_identifier",
             .parent = "case_statement",
             .field = "value",
             .act = Act::kPath,
             .role = Role::kLists},
    CodeRule{.node = "qualified_identifier",
             .field = "type",
             .act = Act::kPath,
             .role = Role::kType,
             .weak = true},
    act("qualified_identifier", Act::kPath),
    skip("destructor_name"),
    skip("operator_name"),
    skip("identifier", "using_declaration"),

    CodeRule{.node = "template_type",
             .act = Act::kGeneric,
             .role = Role::kType,
             .value = "arguments",
             .weak = true},
    CodeRule{.node = "template_function", .act = Act::kGeneric, .value = "arguments"},
    pass("template_method"),
    pass("dependent_name"),
    pass("dependent_type"),
    pass("template_argument_list"),
    act("raw_string_literal", Act::kString),
};

// Last, as the first rule that fits counts.
constexpr std::array kNames = {
    CodeRule{.node = "type_identifier", .act = Act::kName, .role = Role::kType, .weak = true},
    act("identifier", Act::kName),
};

template <std::size_t... kSizes>
constexpr auto joined(const std::array<CodeRule, kSizes>&... parts) {
  std::array<CodeRule, (kSizes + ...)> rules{};
  std::size_t at = 0;
  const auto add = [&](const auto& part) {
    for (const CodeRule& rule : part) rules[at++] = rule;
  };
  (add(parts), ...);
  return rules;
}

constexpr auto kRulesOfC = joined(kCommon, kNames);
constexpr auto kRulesOfCpp = joined(kOnlyCpp, kCommon, kNames);

constexpr std::array kCalls = {
    CallRule{"getenv", Role::kReads},
    CallRule{"secure_getenv", Role::kReads},
    CallRule{"g_getenv", Role::kReads},
    CallRule{"qgetenv", Role::kReads},
    CallRule{"qEnvironmentVariable", Role::kReads},
    CallRule{"qEnvironmentVariableIsSet", Role::kReads},
    CallRule{"GetEnvironmentVariable", Role::kReads},
    CallRule{"GetEnvironmentVariableA", Role::kReads},
    CallRule{"dynamic_cast", Role::kCatches},
    CallRule{"dynamic_pointer_cast", Role::kCatches},
    CallRule{"any_cast", Role::kCatches},
    CallRule{"get_if", Role::kCatches},
    CallRule{"holds_alternative", Role::kCatches},
    CallRule{"make_unique", Role::kConstructs},
    CallRule{"make_shared", Role::kConstructs},
    CallRule{"throw_with_nested", Role::kThrows},
    CallRule{"make_exception_ptr", Role::kThrows},
    CallRule{"BOOST_THROW_EXCEPTION", Role::kThrows},
    CallRule{"EXPECT_THROW", Role::kCatches},
    CallRule{"ASSERT_THROW", Role::kCatches},
    CallRule{"REQUIRE_THROWS_AS", Role::kCatches},
    CallRule{"CHECK_THROWS_AS", Role::kCatches},
    CallRule{"BOOST_CHECK_THROW", Role::kCatches},
    CallRule{"BOOST_REQUIRE_THROW", Role::kCatches},
};

constexpr std::array<std::string_view, 1> kSelf = {"this"};

}  // namespace

constinit const CodeRules c_code = {
    .rules = kRulesOfC, .calls = kCalls, .defined_elsewhere = true, .named = named_in_c};

constinit const CodeRules cpp_code = {.rules = kRulesOfCpp,
                                      .calls = kCalls,
                                      .self = kSelf,
                                      .members_in_scope = true,
                                      .qualified_names = true,
                                      .defined_elsewhere = true,
                                      .named = named_in_cpp};

}  // namespace kestrix::index
