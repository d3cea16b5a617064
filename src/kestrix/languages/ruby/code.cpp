#include "kestrix/languages/ruby/code.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/languages/ruby/macros.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr CodeRule bound(std::string_view parent, std::string_view field = {}) {
  return {.node = "identifier", .parent = parent, .field = field, .act = Act::kBind};
}

// What a value is told apart by: types, or values that it may be.
constexpr CodeRule told_apart(std::string_view node, Act act = Act::kPass,
                              std::string_view parent = {}) {
  return {
      .node = node, .parent = parent, .act = act, .role = Role::kLists, .errors = Role::kCatches};
}

constexpr std::array kRules = {
    skip("comment"),
    skip("uninterpreted"),
    skip("undef"),

    declare("class", DeclarationKind::kClass),
    declare("module", DeclarationKind::kModule),
    declare("method", DeclarationKind::kFunction),
    declare("singleton_method", DeclarationKind::kFunction),
    declare("alias", DeclarationKind::kMethod),
    CodeRule{.node = "assignment",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kConstant,
             .name = "left",
             .value = "right"},
    pass("superclass", Role::kExtends),

    // Names that belong to a method or block.
    act("do_block", Act::kFunctionValue),
    act("block", Act::kFunctionValue),
    act("lambda", Act::kFunctionValue),
    bound("method_parameters"),
    bound("block_parameters"),
    bound("lambda_parameters"),
    bound("destructured_parameter"),
    bound("optional_parameter", "name"),
    bound("keyword_parameter", "name"),
    bound("splat_parameter"),
    bound("hash_splat_parameter"),
    bound("block_parameter"),
    bound("assignment", "left"),
    bound("operator_assignment", "left"),
    bound("left_assignment_list"),
    bound("destructured_left_assignment"),
    bound("rest_assignment"),
    bound("for", "pattern"),
    bound("exception_variable"),
    bound("as_pattern", "name"),
    bound("array_pattern"),
    bound("find_pattern"),
    bound("alternative_pattern"),
    bound("keyword_pattern"),
    bound("in_clause", "pattern"),
    bound("match_pattern", "pattern"),
    bound("test_pattern", "pattern"),

    pass("exceptions", Role::kCatches),
    told_apart("pattern", Act::kPass, "when"),
    told_apart("constant", Act::kName, "in_clause"),
    told_apart("scope_resolution", Act::kPath, "in_clause"),
    told_apart("alternative_pattern"),
    told_apart("array_pattern"),
    told_apart("find_pattern"),
    told_apart("hash_pattern"),
    told_apart("keyword_pattern"),
    told_apart("as_pattern"),
    told_apart("parenthesized_pattern"),

    // What the body of a class calls says something of the class.
    CodeRule{.node = "call",
             .parent = "body_statement",
             .act = Act::kCall,
             .role = Role::kAnnotates,
             .name = "method",
             .value = "arguments",
             .object = "receiver",
             .in_type = true},
    CodeRule{.node = "call",
             .act = Act::kCall,
             .name = "method",
             .value = "arguments",
             .object = "receiver"},
    CodeRule{
        .node = "element_reference", .act = Act::kSubscript, .name = "object", .value = "none"},
    pass("argument_list"),
    pass("parenthesized_statements"),
    pass("block_argument"),
    CodeRule{.node = "splat_argument", .parent = "exceptions", .act = Act::kPass},
    act("splat_argument", Act::kEntry),
    act("hash_splat_argument", Act::kEntry),
    skip("hash_key_symbol"),
    act("pair", Act::kEntry),
    act("array", Act::kTable),
    act("hash", Act::kTable),
    act("string_array", Act::kTable),
    act("symbol_array", Act::kTable),

    act("string", Act::kString),
    act("bare_string", Act::kString),
    pass("chained_string", Role::kUses),
    scalar("simple_symbol"),
    scalar("delimited_symbol"),
    scalar("bare_symbol"),
    scalar("regex"),
    scalar("character"),
    scalar("integer"),
    scalar("float"),
    scalar("true"),
    scalar("false"),
    scalar("nil"),

    skip("constant", "scope_resolution", "name"),
    act("scope_resolution", Act::kPath),
    act("constant", Act::kName),
    CodeRule{.node = "identifier", .parent = "call", .field = "method", .act = Act::kName},
    CodeRule{.node = "identifier",
             .parent = "body_statement",
             .act = Act::kSection,
             .role = Role::kCalls},
    // What no assignment knows is a method.
    CodeRule{.node = "identifier", .act = Act::kName, .role = Role::kCalls},
};

constexpr std::array kCalls = {
    CallRule{.callee = "raise", .role = Role::kThrows, .bare = true, .first = true},
    CallRule{.callee = "fail", .role = Role::kThrows, .bare = true, .first = true},
    CallRule{.callee = "Kernel.raise", .role = Role::kThrows, .first = true},
    CallRule{.callee = "include", .role = Role::kImplements, .bare = true},
    CallRule{.callee = "extend", .role = Role::kImplements, .bare = true},
    CallRule{.callee = "prepend", .role = Role::kImplements, .bare = true},
    CallRule{.callee = "Class.new", .role = Role::kExtends, .first = true},
    CallRule{.callee = "rescue_from", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "retry_on", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "discard_on", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "suppress", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "assert_raises", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "assert_raise", .role = Role::kCatches, .bare = true},
    CallRule{.callee = "raise_error", .role = Role::kCatches, .bare = true, .first = true},
    CallRule{.callee = "is_a?", .role = Role::kCatches},
    CallRule{.callee = "kind_of?", .role = Role::kCatches},
    CallRule{.callee = "instance_of?", .role = Role::kCatches},
    CallRule{.callee = "ENV.fetch", .role = Role::kReads},
    CallRule{.callee = "ENV.key?", .role = Role::kReads},
    CallRule{.callee = "ENV.has_key?", .role = Role::kReads},
    CallRule{.callee = "ENV.include?", .role = Role::kReads},
    CallRule{.callee = "ENV.dig", .role = Role::kReads},
    CallRule{.callee = "ENV.delete", .role = Role::kReads},
};

constexpr auto kSelf = std::to_array<std::string_view>({"self", "super", "_"});
constexpr auto kEnvironments = std::to_array<std::string_view>({"ENV"});
// Those that start like another one stand before it.
constexpr auto kSettings = std::to_array<std::string_view>(
    {"Rails.application.config.x", "Rails.application.config", "Rails.configuration.x",
     "Rails.configuration", "Rails.application.credentials", "Rails.application.secrets",
     "Figaro.env"});
constexpr auto kKeyedSettings = std::to_array<std::string_view>({"config", "settings", "Settings"});
constexpr auto kMakers = std::to_array<std::string_view>({"new"});
constexpr auto kWrappers = std::to_array<std::string_view>(
    {"freeze", "with_indifferent_access", "to_set", "Set.new", "Hash.new"});

// Of what is told apart the types: what is written as constants are is a value.
bool is_type_name(std::string_view path, Role) {
  const std::string_view name = path.substr(path.rfind('.') + 1);
  return !is_upper_case(name) && ascii::is_upper(name.front());
}

std::optional<bool> hides(std::string_view word) {
  if (word == "private" || word == "protected") return true;
  if (word == "public") return false;
  return std::nullopt;
}

bool exported(const SourceTree&, TSNode declaration, const Declaration& as) {
  // Sections speak of the methods of instances.
  return as.exported || type_of(declaration) != "method";
}

// A method that does nothing but raise that there is none.
bool is_abstract(const SourceTree& tree, TSNode node, const Declaration& as) {
  if (as.kind != DeclarationKind::kMethod) return false;
  const auto body = field_of(node, "body");
  if (!body || ts_node_end_byte(*body) - ts_node_start_byte(*body) > 2000) return false;
  const std::string_view text = tree.text(*body);
  const bool raises = text.starts_with("raise") || text.starts_with("fail");
  return raises && text.find("NotImplemented") != std::string_view::npos &&
         ts_node_named_child_count(*body) <= 2;
}

// What a module does to the classes that include it.
bool is_for_others(const SourceTree& tree, TSNode call) {
  const auto method = field_of(call, "method");
  const std::string_view name = method ? tree.text(*method) : std::string_view();
  return name == "included" || name == "class_methods" || name == "prepended" ||
         (name == "extend" && tree.text(call).ends_with("Concern"));
}

// A module with methods of its own is there to be included or called.
bool has_methods(const SourceTree& tree, TSNode module) {
  const auto body = field_of(module, "body");
  if (!body) return false;
  bool any = false;
  for_each_child(*body, [&](TSNode child, std::string_view) {
    const std::string_view type = type_of(child);
    any |= type == "method" || type == "singleton_method" || type == "singleton_class" ||
           (type == "call" && is_for_others(tree, child));
  });
  return any;
}

// The type that "Struct.new(…)" and its like make.
std::optional<DeclarationKind> made(const SourceTree& tree, TSNode value) {
  if (type_of(value) != "call") return std::nullopt;
  const auto maker = field_of(value, "receiver");
  const auto method = field_of(value, "method");
  if (!maker || !method || type_of(*maker) != "constant") return std::nullopt;
  const std::string_view type = tree.text(*maker);
  const bool makes = tree.text(*method) == (type == "Data" ? "define" : "new");
  if (!makes) return std::nullopt;
  if (type == "Struct") return DeclarationKind::kStruct;
  if (type == "Data") return DeclarationKind::kRecord;
  if (type == "Class") return DeclarationKind::kClass;
  if (type == "Module") return DeclarationKind::kTrait;
  return std::nullopt;
}

bool refine(const SourceTree& tree, TSNode declaration, Declaration& as) {
  if (as.kind == DeclarationKind::kModule && has_methods(tree, declaration))
    as.kind = DeclarationKind::kTrait;
  if (type_of(declaration) != "assignment") return true;
  const auto left = field_of(declaration, "left");
  if (!left || (type_of(*left) != "constant" && type_of(*left) != "scope_resolution")) return false;
  const auto right = field_of(declaration, "right");
  if (const auto kind = right ? made(tree, *right) : std::nullopt) {
    as.kind = *kind;
    as.shape = ValueShape::kUnknown;
  }
  return true;
}

}  // namespace

constinit const CodeRules ruby_code = {.rules = kRules,
                                       .calls = kCalls,
                                       .self = kSelf,
                                       .environments = kEnvironments,
                                       .settings = kSettings,
                                       .keyed_settings = kKeyedSettings,
                                       .makers = kMakers,
                                       .capital_types = true,
                                       .thrown_types = true,
                                       .wrappers = kWrappers,
                                       .namespaced_names = true,
                                       .members_in_scope = true,
                                       .is_error = is_type_name,
                                       .exported = exported,
                                       .is_abstract = is_abstract,
                                       .hides = hides,
                                       .macro = ruby::note_macro,
                                       .refine = refine};

}  // namespace kestrix::index
