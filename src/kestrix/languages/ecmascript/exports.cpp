#include "kestrix/languages/ecmascript/exports.h"

namespace kestrix::index::ecmascript {
namespace {

// "a = b = …" is followed so far.
constexpr int kMostTargets = 8;

}  // namespace

std::string_view exports_member(std::string_view target) {
  for (const std::string_view object : {"module.exports.", "exports."}) {
    if (!target.starts_with(object)) continue;
    target.remove_prefix(object.size());
    return target.find_first_of(".[(") == std::string_view::npos ? target : std::string_view();
  }
  return {};
}

std::optional<Export> exported_by(const SourceTree& tree, TSNode assignment) {
  std::string_view name;
  std::string_view from;
  TSNode value = assignment;
  for (int depth = 0; depth < kMostTargets && type_of(value) == "assignment_expression"; ++depth) {
    const auto left = field_of(value, "left");
    const auto right = field_of(value, "right");
    if (!left || !right) return std::nullopt;
    const std::string_view target = tree.text(*left);
    if (target == "module.exports") name = kSoleExport;
    if (name.empty()) {
      name = exports_member(target);
      from = target.substr(target.starts_with("module.") ? 7 : 0);
    }
    value = *right;
  }
  if (name.empty()) return std::nullopt;
  return Export{name, from, value};
}

std::string_view name_of_export(const SourceTree& tree, const Export& exported) {
  const std::string_view kind = type_of(exported.value);
  if (kind == "identifier") return tree.text(exported.value);
  if (exported.name != kSoleExport) return exported.target;
  if (kind == "function_expression" || kind == "class" || kind == "generator_function") {
    if (const auto name = field_of(exported.value, "name")) return tree.text(*name);
  }
  return "default";
}

bool is_declared(const SourceTree& tree, const Export& exported) {
  return type_of(exported.value) != "unary_expression" && !is_import(tree, exported.value);
}

bool is_import(const SourceTree& tree, TSNode value) {
  if (type_of(value) == "await_expression" && ts_node_named_child_count(value) == 1) {
    value = ts_node_named_child(value, 0);
  }
  if (type_of(value) == "member_expression") value = *field_of(value, "object");
  if (type_of(value) != "call_expression") return false;
  const auto callee = field_of(value, "function");
  const auto arguments = field_of(value, "arguments");
  if (!callee || !arguments) return false;
  const std::string_view name = tree.text(*callee);
  if (name != "require" && name != "import") return false;
  return ts_node_named_child_count(*arguments) > 0 &&
         type_of(ts_node_named_child(*arguments, 0)) == "string";
}

}  // namespace kestrix::index::ecmascript
