#include "kestrix/languages/python/code.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kestrix/languages/code/rule_shapes.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::array kRules = {
    skip("import_statement"),
    skip("import_from_statement"),
    skip("future_import_statement"),
    skip("comment"),

    declare("class_definition", DeclarationKind::kClass),
    declare("function_definition", DeclarationKind::kFunction),
    CodeRule{.node = "assignment",
             .act = Act::kDeclare,
             .kind = DeclarationKind::kVariable,
             .name = "left",
             .value = "right"},
    pass("type_alias_statement", Role::kType),
    CodeRule{.node = "argument_list",
             .parent = "class_definition",
             .act = Act::kPass,
             .role = Role::kExtends},
    CodeRule{.node = "decorator", .act = Act::kPass, .role = Role::kAnnotates, .ahead = true},
    act("lambda", Act::kFunctionValue),

    // Names that belong to a function.
    CodeRule{.node = "identifier", .parent = "parameters", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "lambda_parameters", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "typed_parameter", .act = Act::kBind},
    CodeRule{
        .node = "identifier", .parent = "default_parameter", .field = "name", .act = Act::kBind},
    CodeRule{.node = "identifier",
             .parent = "typed_default_parameter",
             .field = "name",
             .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "list_splat_pattern", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "dictionary_splat_pattern", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "pattern_list", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "tuple_pattern", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "for_statement", .field = "left", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "for_in_clause", .field = "left", .act = Act::kBind},
    CodeRule{.node = "identifier", .parent = "as_pattern_target", .act = Act::kBind},
    CodeRule{
        .node = "identifier", .parent = "named_expression", .field = "name", .act = Act::kBind},

    pass("raise_statement", Role::kThrows),
    CodeRule{.node = "block", .parent = "except_clause", .act = Act::kPass, .role = Role::kUses},
    pass("except_clause", Role::kCatches),
    pass("as_pattern"),
    pass("case_pattern", Role::kLists),
    pass("type", Role::kType),

    CodeRule{.node = "call", .act = Act::kCall, .name = "function", .value = "arguments"},
    CodeRule{.node = "subscript",
             .field = "",
             .act = Act::kSubscript,
             .name = "value",
             .value = "subscript"},
    act("keyword_argument", Act::kEntry),
    skip("identifier", "keyword_argument", "name"),
    pass("argument_list"),
    act("list", Act::kTable),
    act("tuple", Act::kTable),
    act("set", Act::kTable),
    act("dictionary", Act::kTable),
    act("pair", Act::kEntry),
    act("list_splat", Act::kEntry),

    act("string", Act::kString),
    pass("concatenated_string", Role::kUses),
    scalar("integer"),
    scalar("float"),
    scalar("true"),
    scalar("false"),
    scalar("none"),

    skip("identifier", "attribute", "attribute"),
    act("attribute", Act::kPath),
    act("identifier", Act::kName),
};

constexpr std::array kCalls = {
    CallRule{"isinstance", Role::kCatches},
    CallRule{"issubclass", Role::kCatches},
    CallRule{"suppress", Role::kCatches},
    CallRule{"errorhandler", Role::kCatches},
    CallRule{"register_error_handler", Role::kCatches},
    CallRule{"exception_handler", Role::kCatches},
    CallRule{"add_exception_handler", Role::kCatches},
    CallRule{"os.getenv", Role::kReads},
    CallRule{"os.environ.get", Role::kReads},
    CallRule{"environ.get", Role::kReads},
    CallRule{"os.environ.setdefault", Role::kReads},
    CallRule{"environ.setdefault", Role::kReads},
    CallRule{"getenv", Role::kReads},
    CallRule{"config.from_envvar", Role::kReads},
    CallRule{"config.get", Role::kReads},
    CallRule{"settings.get", Role::kReads},
    CallRule{"settings.getbool", Role::kReads},
    CallRule{"settings.getdict", Role::kReads},
    CallRule{"settings.getfloat", Role::kReads},
    CallRule{"settings.getint", Role::kReads},
    CallRule{"settings.getlist", Role::kReads},
};

constexpr std::array<std::string_view, 4> kSelf = {"self", "cls", "super", "_"};
constexpr std::array<std::string_view, 2> kEnvironments = {"os.environ", "environ"};
constexpr std::array<std::string_view, 2> kSettings = {"config", "settings"};

// Settings are written as constants are. Other tables that are called so have other keys.
std::string_view key_of(std::string_view content) {
  return std::ranges::any_of(content, ascii::is_upper) ? content : std::string_view();
}

// A method is abstract if it says so, or does nothing but raise that it is not implemented.
bool is_abstract(const SourceTree& tree, TSNode node, const Declaration& as) {
  if (as.kind != DeclarationKind::kMethod) return false;
  const TSNode decorated = ts_node_parent(node);
  if (!ts_node_is_null(decorated) && type_of(decorated) == "decorated_definition") {
    const auto head = tree.text(ts_node_start_byte(decorated), ts_node_start_byte(node));
    if (head.find("abstractmethod") != std::string_view::npos) return true;
  }
  const auto body = field_of(node, "body");
  if (!body || ts_node_end_byte(*body) - ts_node_start_byte(*body) > 2000) return false;
  const std::uint32_t count = ts_node_named_child_count(*body);
  if (count == 0) return false;
  const TSNode last = ts_node_named_child(*body, count - 1);
  return type_of(last) == "raise_statement" && count <= 2 &&
         tree.text(last).find("NotImplementedError") != std::string_view::npos;
}

bool exported(const SourceTree&, TSNode, const Declaration& as) {
  return !as.name.starts_with('_') || as.name.starts_with("__");
}

// Parameters of tests and of fixtures are filled with the fixtures of those names.
bool injected(const SourceTree& tree, TSNode bound) {
  TSNode list = ts_node_parent(bound);
  if (!ts_node_is_null(list) && type_of(list) == "typed_parameter") list = ts_node_parent(list);
  if (ts_node_is_null(list) || type_of(list) != "parameters") return false;
  const TSNode function = ts_node_parent(list);
  const auto name = field_of(function, "name");
  if (!name) return false;
  if (tree.text(*name).starts_with("test")) return true;
  const TSNode decorated = ts_node_parent(function);
  if (ts_node_is_null(decorated) || type_of(decorated) != "decorated_definition") return false;
  const auto head = tree.text(ts_node_start_byte(decorated), ts_node_start_byte(function));
  return head.find("fixture") != std::string_view::npos;
}

}  // namespace

constinit const CodeRules python_code = {.rules = kRules,
                                         .calls = kCalls,
                                         .self = kSelf,
                                         .own_fields = OwnFields{"self", "__init__"},
                                         .environments = kEnvironments,
                                         .keyed_settings = kSettings,
                                         .exported = exported,
                                         .is_abstract = is_abstract,
                                         .key_of = key_of,
                                         .injected = injected};

}  // namespace kestrix::index
