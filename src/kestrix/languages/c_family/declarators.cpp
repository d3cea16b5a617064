#include "kestrix/languages/c_family/declarators.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kestrix/languages/code/names.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 6> kNames = {"identifier",      "field_identifier",
                                                    "type_identifier", "operator_name",
                                                    "destructor_name", "operator_cast"};
// Grammars give these no field for what they hold.
constexpr std::array<std::string_view, 4> kBare = {"parenthesized_declarator",
                                                   "reference_declarator", "attributed_declarator",
                                                   "variadic_declarator"};

template <class List>
bool contains(const List& list, std::string_view word) {
  return std::ranges::find(list, word) != list.end();
}

// "a::b<T, U<V>>::c" without what stands in angle brackets.
std::string without_arguments(std::string_view text) {
  std::string bare;
  int depth = 0;
  for (const char c : text) {
    if (c == '<') ++depth;
    if (depth == 0) bare += c;
    if (c == '>') --depth;
  }
  return bare;
}

}  // namespace

std::optional<Declarator> declarator_of(TSNode node) {
  Declarator found{.whole = node};
  bool qualified = false;
  for (TSNode at = node; !ts_node_is_null(at);) {
    const std::string_view type = type_of(at);
    if (!qualified) found.whole = at;
    if (contains(kNames, type)) {
      found.name = at;
      found.function |= type == "operator_cast";
      return found;
    }
    if (type == "qualified_identifier" || type == "template_function" || type == "template_type") {
      qualified = true;
      at = field_of(at, "name").value_or(TSNode{});
      continue;
    }
    if (type == "init_declarator") found.value = field_of(at, "value");
    if (type == "array_declarator") found.array = true;
    // "(*f)(int)" is a value, "(*f(int))(int)" a function again.
    if (type == "pointer_declarator" && found.function) found.function_pointer = true;
    if (type == "function_declarator") found.function_pointer = false;
    if (type == "function_declarator") found.function = true;
    found.function &= !found.function_pointer;
    const auto inner = field_of(at, "declarator");
    if (inner) {
      at = *inner;
    } else if (contains(kBare, type) && ts_node_named_child_count(at) > 0) {
      at = ts_node_named_child(at, 0);
    } else {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::string name_of(const SourceTree& tree, const Declarator& declarator) {
  const std::string_view type = type_of(declarator.name);
  std::string last(tree.text(declarator.name));
  if (type == "operator_cast") last = "operator";
  std::erase_if(last, [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
  const std::string front = without_arguments(
      tree.text(ts_node_start_byte(declarator.whole), ts_node_start_byte(declarator.name)));
  const auto path = name_path(front);
  return path ? *path + "." + last : last;
}

}  // namespace kestrix::index
