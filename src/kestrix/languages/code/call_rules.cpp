#include "kestrix/languages/code/call_rules.h"

namespace kestrix::index {

// Where a method may end with "?", it is another one than that without.
const CallRule* call_rule(const CodeRules& rules, std::string_view path, char last, bool member) {
  for (const CallRule& call : rules.calls) {
    std::string_view callee = call.callee;
    if ((last == '?') != callee.ends_with('?') || (call.bare && member)) continue;
    if (last == '?') callee.remove_suffix(1);
    if (!path.ends_with(callee)) continue;
    const std::size_t before = path.size() - callee.size();
    if (before == 0 || path[before - 1] == '.') return &call;
  }
  return nullptr;
}

TSNode first_argument(TSNode call, TSFieldId arguments) {
  const TSNode list = ts_node_child_by_field_id(call, arguments);
  return ts_node_is_null(list) ? list : ts_node_named_child(list, 0);
}

bool is_sole_argument(TSNode call, TSNode callee, TSFieldId arguments) {
  const TSNode list = arguments == 0 ? ts_node_next_named_sibling(callee)
                                     : ts_node_child_by_field_id(call, arguments);
  return !ts_node_is_null(list) && ts_node_named_child_count(list) == 1;
}

}  // namespace kestrix::index
