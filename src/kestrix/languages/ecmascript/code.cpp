#include "kestrix/languages/ecmascript/code.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

#include "kestrix/languages/ecmascript/code_rules.h"
#include "kestrix/languages/ecmascript/exports.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace ecmascript {

std::optional<Role> role_of_operation(TSNode operation) {
  const auto operation_sign = field_of(operation, "operator");
  if (!operation_sign || type_of(*operation_sign) != "instanceof") return std::nullopt;
  return Role::kCatches;
}

namespace {

template <std::size_t... sizes>
constexpr auto joined(const std::array<CodeRule, sizes>&... parts) {
  std::array<CodeRule, (sizes + ...)> all{};
  std::size_t at = 0;
  const auto add = [&](const auto& part) {
    for (const CodeRule& rule : part) all[at++] = rule;
  };
  (add(parts), ...);
  return all;
}

constexpr auto kJavaScript = joined(kScriptRules, kMarkupRules, kCommonRules);
constexpr auto kTypeScript = joined(kTypeRules, kCommonRules);
constexpr auto kComponent = joined(kElementRules, kTypeRules, kCommonRules);
constexpr auto kTsx = joined(kTypeRules, kMarkupRules, kCommonRules);

constexpr std::array kCalls = {
    CallRule{"Promise.reject", Role::kThrows},   CallRule{"reject", Role::kThrows},
    CallRule{"configService.get", Role::kReads}, CallRule{"configService.getOrThrow", Role::kReads},
    CallRule{"config.get", Role::kReads},        CallRule{"config.getOrThrow", Role::kReads},
    CallRule{"nconf.get", Role::kReads},         CallRule{"Deno.env.get", Role::kReads},
    CallRule{"Env.get", Role::kReads},           CallRule{"env.get", Role::kReads},
    CallRule{"core.getInput", Role::kReads},     CallRule{"core.getBooleanInput", Role::kReads},
};

// What is no name of the file: the object around, and those of the language that look like names.
constexpr auto kSelf = std::to_array<std::string_view>({"this", "super", "arguments"});
constexpr auto kEnvironments = std::to_array<std::string_view>(
    {"process.env", "import.meta.env", "Bun.env", "globalThis.process.env"});

bool is_function(std::string_view kind) {
  return kind == "arrow_function" || kind == "function_expression" || kind == "generator_function";
}

// "const a = …": constants are told by how they are declared.
bool is_constant(const SourceTree& tree, TSNode declarator) {
  std::string_view before = tree.text(0, ts_node_start_byte(declarator));
  const std::size_t end = before.find_last_not_of(" \t\r\n");
  before = before.substr(0, end == std::string_view::npos ? 0 : end + 1);
  return before.ends_with("const");
}

std::string_view text_behind(const SourceTree& tree, TSNode node) {
  std::string_view text = tree.text().substr(ts_node_end_byte(node));
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n;"), text.size()));
  for (const std::string_view word : {"export ", "default ", "async ", "function "}) {
    if (!text.starts_with(word)) continue;
    text.remove_prefix(word.size());
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  }
  return text;
}

// Signatures of a function stand before the function itself.
bool is_overload(const SourceTree& tree, TSNode signature, std::string_view name) {
  const std::string_view next = text_behind(tree, signature);
  if (!next.starts_with(name)) return false;
  const std::string_view rest = next.substr(name.size());
  return rest.starts_with('(') || rest.starts_with('<');
}

// "Type.prototype.name = function", "object.name = function": what the name belongs to.
struct Assigned {
  std::string_view owner;
  std::string_view name;
};
std::optional<Assigned> assigned_function(const SourceTree& tree, TSNode assignment) {
  const auto left = field_of(assignment, "left");
  const auto right = field_of(assignment, "right");
  if (!left || !right || type_of(*left) != "member_expression") return std::nullopt;
  if (!is_function(type_of(*right))) return std::nullopt;
  const std::string_view target = tree.text(*left);
  const std::size_t dot = target.rfind('.');
  if (dot == std::string_view::npos) return std::nullopt;
  Assigned found{target.substr(0, dot), target.substr(dot + 1)};
  if (found.owner.ends_with(".prototype")) found.owner.remove_suffix(10);
  if (found.owner.find_first_of(".([") != std::string_view::npos) return std::nullopt;
  if (found.owner == "this" || found.owner == "module") return std::nullopt;
  return found;
}

std::string_view owner(const SourceTree& tree, TSNode node) {
  if (type_of(node) != "assignment_expression" || exported_by(tree, node)) return {};
  const auto assigned = assigned_function(tree, node);
  return assigned ? assigned->owner : std::string_view();
}

std::optional<std::string_view> name_of_assignment(const SourceTree& tree, TSNode node,
                                                   TSNode target) {
  if (const auto exported = exported_by(tree, node)) {
    const std::string_view kind = type_of(exported->value);
    if (is_import(tree, exported->value)) return "";
    // "exports.a = void 0" goes before the declaration.
    if (kind == "identifier" || kind == "unary_expression") return std::nullopt;
    return name_of_export(tree, *exported);
  }
  if (const auto assigned = assigned_function(tree, node)) return assigned->name;
  if (type_of(target) != "subscript_expression") return std::nullopt;
  return tree.text(target);
}

// "export default value"
std::optional<std::string_view> name_of_default(TSNode statement) {
  const auto value = field_of(statement, "value");
  if (!value || type_of(*value) == "identifier" || type_of(*value) == "undefined") {
    return std::nullopt;
  }
  return "default";
}

std::optional<std::string_view> name_of(const SourceTree& tree, TSNode node, TSNode name) {
  const std::string_view kind = type_of(node);
  if (kind == "variable_declarator") {
    const auto value = field_of(node, "value");
    if (value && is_import(tree, *value)) return "";
    if (ts_node_is_null(name) || type_of(name) != "identifier") return std::nullopt;
    return tree.text(name);
  }
  if (kind == "assignment_expression") return name_of_assignment(tree, node, name);
  if (kind == "export_statement") return name_of_default(node);
  if (ts_node_is_null(name)) {
    if (ts_node_child_count(node) > 0) return std::nullopt;
    return tree.text(node);
  }
  if (kind == "function_signature" && is_overload(tree, node, tree.text(name))) return "";
  return tree.text(name);
}

bool has_token(TSNode node, std::string_view wanted) {
  const std::uint32_t most = std::min(ts_node_child_count(node), 6U);
  for (std::uint32_t at = 0; at < most; ++at) {
    if (type_of(ts_node_child(node, at)) == wanted) return true;
  }
  return false;
}

bool refine_value(const SourceTree& tree, TSNode node, Declaration& as) {
  const std::string_view kind = type_of(node);
  if (kind == "assignment_expression" && as.kind == DeclarationKind::kFunction &&
      !owner(tree, node).empty()) {
    as.kind = DeclarationKind::kMethod;
  }
  const bool exported = kind == "assignment_expression" || kind == "export_statement";
  if (as.kind == DeclarationKind::kVariable && (exported || is_constant(tree, node))) {
    as.kind = DeclarationKind::kConstant;
  }
  const auto value =
      kind == "assignment_expression"
          ? std::optional(exported_by(tree, node).value_or(Export{{}, {}, node}).value)
          : field_of(node, "value");
  if (value && type_of(*value) == "class") {
    as.kind = DeclarationKind::kClass;
    as.shape = ValueShape::kUnknown;
    as.size = 0;
  }
  return true;
}

bool refine(const SourceTree& tree, TSNode node, Declaration& as) {
  const std::string_view kind = type_of(node);
  if (kind == "variable_declarator" || kind == "assignment_expression" ||
      kind == "export_statement") {
    return refine_value(tree, node, as);
  }
  if (kind == "method_signature" && as.container == 0) return false;
  if (kind == "type_alias_declaration") {
    const auto value = field_of(node, "value");
    if (value && type_of(*value) == "object_type") as.kind = DeclarationKind::kInterface;
  }
  if (kind == "public_field_definition" || kind == "field_definition") {
    const auto value = field_of(node, "value");
    if (value && is_function(type_of(*value))) {
      as.kind = DeclarationKind::kMethod;
    } else if (has_token(node, "static")) {
      as.kind = is_upper_case(as.name) ? DeclarationKind::kConstant : DeclarationKind::kVariable;
    }
  }
  return true;
}

bool is_abstract(const SourceTree&, TSNode node, const Declaration& as) {
  const std::string_view kind = type_of(node);
  if (kind == "abstract_class_declaration") return true;
  return as.kind == DeclarationKind::kMethod &&
         (kind == "method_signature" || kind == "abstract_method_signature");
}

bool exported(const SourceTree& tree, TSNode node, const Declaration& as) {
  if (as.container == 0) return true;  // the file's list of exports tells
  if (as.name.starts_with('#')) return false;
  const std::string_view kind = type_of(node);
  if (kind != "method_definition" && kind != "public_field_definition") return true;
  const std::uint32_t most = std::min(ts_node_named_child_count(node), 3U);
  for (std::uint32_t at = 0; at < most; ++at) {
    const TSNode child = ts_node_named_child(node, at);
    if (type_of(child) == "accessibility_modifier") return tree.text(child) == "public";
  }
  return true;
}

// Which names a file exports it may say after it has declared them. A file that neither imports nor
// exports shares its names with all others.
void finish(FileFacts& facts) {
  if (facts.imports.empty() && facts.declares.empty()) return;
  std::unordered_set<std::string_view, SeededHash> own;
  for (const ImportFact& import : facts.imports) {
    if (!import.module.empty()) continue;
    for (const ImportedName& name : import.names) own.insert(name.name);
  }
  for (Declaration& declared : facts.declarations) {
    if (declared.container != 0) continue;
    declared.exported =
        own.contains(declared.name) || std::ranges::binary_search(facts.declares, declared.name);
  }
}

constexpr CodeRules rules_of(std::span<const CodeRule> rules) {
  return {.rules = rules,
          .calls = kCalls,
          .self = kSelf,
          .environments = kEnvironments,
          .flat_environments = true,
          .qualified_names = true,
          .owner = owner,
          .exported = exported,
          .is_abstract = is_abstract,
          .name_of = name_of,
          .refine = refine,
          .finish = finish};
}

}  // namespace
}  // namespace ecmascript

constinit const CodeRules javascript_code = ecmascript::rules_of(ecmascript::kJavaScript);
constinit const CodeRules typescript_code = ecmascript::rules_of(ecmascript::kTypeScript);
constinit const CodeRules component_code = ecmascript::rules_of(ecmascript::kComponent);
constinit const CodeRules tsx_code = ecmascript::rules_of(ecmascript::kTsx);

}  // namespace kestrix::index
