#include "kestrix/languages/php/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kestrix/languages/code/names.h"
#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr CodeRule call(std::string_view node, std::string_view name, std::string_view object) {
  return {.node = node, .act = Act::kCall, .name = name, .value = "arguments", .object = object};
}
constexpr CodeRule typed(std::string_view node) {
  return {.node = node, .role = Role::kType, .weak = true};
}

std::optional<Role> role_behind_operator(TSNode node) {
  const TSNode before = ts_node_prev_sibling(node);
  if (ts_node_is_null(before) || type_of(before) != "instanceof") return std::nullopt;
  return Role::kCatches;
}
constexpr CodeRule tested(std::string_view node, Act act) {
  return {.node = node,
          .parent = "binary_expression",
          .field = "right",
          .act = act,
          .ask = role_behind_operator};
}

constexpr std::array kRules = {
    skip("namespace_name"),
    skip("namespace_use_declaration"),
    skip("comment"),
    skip("variable_name"),
    skip("text"),
    skip("goto_statement"),
    skip("named_label_statement"),

    declare("class_declaration", DeclarationKind::kClass),
    declare("interface_declaration", DeclarationKind::kInterface),
    declare("trait_declaration", DeclarationKind::kTrait),
    declare("enum_declaration", DeclarationKind::kEnum),
    declare("enum_case", DeclarationKind::kMember),
    declare("function_definition", DeclarationKind::kFunction),
    declare("method_declaration", DeclarationKind::kMethod),
    declare("const_element", DeclarationKind::kConstant),
    declare("property_element", DeclarationKind::kVariable),
    declare("property_promotion_parameter", DeclarationKind::kField),
    CodeRule{.node = "assignment_expression",
             .parent = "expression_statement",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable,
             .name = "left",
             .value = "right"},
    skip("name", "const_element"),
    act("anonymous_class", Act::kNameless),
    act("anonymous_function", Act::kFunctionValue),
    act("arrow_function", Act::kFunctionValue),

    pass("base_clause", Role::kExtends),
    pass("class_interface_clause", Role::kImplements),
    skip("use_list"),
    pass("use_declaration", Role::kImplements),
    CodeRule{.node = "attribute_list", .parent = "property_declaration", .ahead = true},
    CodeRule{.node = "attribute_list", .parent = "const_declaration", .ahead = true},
    pass("attribute", Role::kAnnotates),
    CodeRule{.node = "arguments", .parent = "attribute", .role = Role::kLists},

    pass("throw_expression", Role::kThrows),
    CodeRule{.node = "type_list", .parent = "catch_clause", .role = Role::kCatches},
    tested("name", Act::kName),
    tested("qualified_name", Act::kPath),
    pass("match_condition_list", Role::kLists),
    CodeRule{.node = "class_constant_access_expression",
             .parent = "case_statement",
             .field = "value",
             .act = Act::kPath,
             .role = Role::kLists},

    call("function_call_expression", "function", ""),
    call("member_call_expression", "name", "object"),
    call("nullsafe_member_call_expression", "name", "object"),
    call("scoped_call_expression", "name", "scope"),
    CodeRule{.node = "object_creation_expression", .act = Act::kConstruct, .name = "", .value = ""},
    CodeRule{.node = "subscript_expression", .act = Act::kSubscript, .name = "", .value = ""},
    act("arguments", Act::kPass),
    act("argument", Act::kPass),
    act("parenthesized_expression", Act::kPass),
    skip("name", "argument", "name"),
    skip("name", "member_access_expression", "name"),
    skip("name", "nullsafe_member_access_expression", "name"),

    act("array_creation_expression", Act::kTable),
    act("array_element_initializer", Act::kEntry),
    act("variadic_unpacking", Act::kEntry),

    typed("optional_type"),
    typed("union_type"),
    typed("intersection_type"),
    typed("disjunctive_normal_form_type"),
    typed("named_type"),

    act("string", Act::kString),
    act("encapsed_string", Act::kString),
    pass("heredoc", Role::kUses),
    skip("nowdoc"),
    act("integer", Act::kScalar),
    act("float", Act::kScalar),
    act("boolean", Act::kScalar),
    act("null", Act::kScalar),

    act("class_constant_access_expression", Act::kPath),
    act("scoped_property_access_expression", Act::kPath),
    act("qualified_name", Act::kPath),
    act("relative_name", Act::kPath),
    act("name", Act::kName),
};

constexpr std::array kCalls = {
    CallRule{.callee = "env", .role = Role::kReads, .bare = true},
    CallRule{.callee = "getenv", .role = Role::kReads, .bare = true},
    CallRule{.callee = "config", .role = Role::kReads, .bare = true},
    CallRule{.callee = "get_option", .role = Role::kReads, .bare = true},
    CallRule{.callee = "ini_get", .role = Role::kReads, .bare = true},
    CallRule{.callee = "Env.get", .role = Role::kReads},
    CallRule{.callee = "Config.get", .role = Role::kReads},
    CallRule{.callee = "config.get", .role = Role::kReads},
    CallRule{.callee = "getParameter", .role = Role::kReads},
    CallRule{.callee = "is_a", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "is_subclass_of", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "dontReport", .role = Role::kCatches},
    CallRule{.callee = "throw_if", .role = Role::kThrows, .bare = true},
    CallRule{.callee = "throw_unless", .role = Role::kThrows, .bare = true},
};

constexpr std::array<std::string_view, 4> kSelf = {"$this", "self", "static", "parent"};
constexpr std::array<std::string_view, 3> kOwn = {"$this", "self", "static"};
constexpr std::array<std::string_view, 1> kEnvironments = {"$_ENV"};

bool has_modifier(TSNode declaration, std::string_view modifier) {
  TreeCursor cursor(declaration);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    const std::string_view type = type_of(cursor.node());
    if (type == modifier) return true;
    if (type == "formal_parameters" || type == "declaration_list") return false;
  }
  return false;
}

bool is_private(const SourceTree& tree, TSNode bearer) {
  TreeCursor cursor(bearer);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) == "visibility_modifier") {
      return tree.text(cursor.node()) == "private";
    }
    if (type_of(cursor.node()) == "formal_parameters") return false;
  }
  return false;
}

bool exported(const SourceTree& tree, TSNode declaration, const Declaration&) {
  const std::string_view type = type_of(declaration);
  const bool one_of_several = type == "const_element" || type == "property_element";
  return !is_private(tree, one_of_several ? ts_node_parent(declaration) : declaration);
}

bool is_abstract(const SourceTree&, TSNode declaration, const Declaration& as) {
  if (is_type(as.kind)) return has_modifier(declaration, "abstract_modifier");
  return as.kind == DeclarationKind::kMethod && !field_of(declaration, "body");
}

// Variables are declared with their mark, constants without a field for their name.
std::optional<std::string_view> name_of(const SourceTree& tree, TSNode node, TSNode name) {
  if (type_of(node) == "const_element") name = ts_node_named_child(node, 0);
  if (ts_node_is_null(name)) return std::nullopt;
  std::string_view text = tree.text(name);
  const std::string_view type = type_of(name);
  if (type == "name") return text;
  if (type != "variable_name" && type != "by_ref") return std::nullopt;
  text.remove_prefix(std::min(text.find('$') + 1, text.size()));
  return text;
}

TSNode value_of(TSNode declaration) {
  const std::string_view type = type_of(declaration);
  if (type == "const_element") return ts_node_named_child(declaration, 1);
  const std::string_view field = type == "property_element"        ? "default_value"
                                 : type == "assignment_expression" ? "right"
                                                                   : "value";
  return field_of(declaration, field).value_or(TSNode{});
}

bool refine(const SourceTree&, TSNode declaration, Declaration& as) {
  if (type_of(declaration) == "property_element") as.kind = DeclarationKind::kField;
  return true;
}

// Names that need no look-up outside of the file.
std::unordered_set<std::string_view, SeededHash> known_in(const FileFacts& facts) {
  std::unordered_set<std::string_view, SeededHash> known(facts.declares.begin(),
                                                         facts.declares.end());
  for (const ImportFact& import : facts.imports) known.insert(import.local);
  return known;
}

// What an interface extends is one, too. Functions need no import to be called.
void finish(FileFacts& facts) {
  constexpr std::string_view kSpace = "namespace.";
  const auto known = known_in(facts);
  for (Mention& mention : facts.mentions) {
    if (mention.name.starts_with(kSpace)) mention.name.erase(0, kSpace.size());
    if (mention.role == Role::kExtends && mention.within > 0 &&
        facts.declarations[mention.within - 1].kind == DeclarationKind::kInterface) {
      mention.role = Role::kImplements;
    }
    const bool function = mention.role == Role::kCalls && ascii::is_lower(mention.name.front()) &&
                          mention.name.find('.') == std::string::npos &&
                          !known.contains(mention.name);
    if (function) facts.uses.push_back({mention.name, mention.count});
  }
  std::ranges::sort(facts.uses, {}, &NameUse::name);
  std::vector<NameUse> uses;
  for (NameUse& use : facts.uses) {
    if (!uses.empty() && uses.back().name == use.name) {
      uses.back().uses += use.uses;
    } else {
      uses.push_back(std::move(use));
    }
  }
  facts.uses = std::move(uses);
}

// By Eloquent's convention the factory of a model is the class that is called like both.
void note_factory(const SourceTree&, TSNode, std::string_view callee, MacroNotes& notes) {
  constexpr std::string_view kFactory = "factory";
  if (!callee.ends_with(kFactory) || callee.size() > kLongestMention / 2) return;
  callee.remove_suffix(kFactory.size());
  const std::size_t end = callee.find_last_not_of(".:");
  if (end == std::string_view::npos || end + 1 == callee.size()) return;
  const std::string_view path = callee.substr(0, end + 1);
  const std::size_t start = path.find_last_of(".:\\") + 1;  // 0 without one
  notes.mentions.emplace_back(std::string(path.substr(start)) + "Factory", Role::kString);
}

}  // namespace

constinit const CodeRules php_code = {.rules = kRules,
                                      .calls = kCalls,
                                      .self = kSelf,
                                      .own = kOwn,
                                      .variables = '$',
                                      .environments = kEnvironments,
                                      .exported = exported,
                                      .is_abstract = is_abstract,
                                      .name_of = name_of,
                                      .macro = note_factory,
                                      .refine = refine,
                                      .value_of = value_of,
                                      .finish = finish};

}  // namespace kestrix::index
