#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

std::optional<TSNode> Match::node(std::string_view capture) const {
  for (const TSQueryCapture& candidate : captures_) {
    if (query_->capture_name(candidate.index) == capture) return candidate.node;
  }
  return std::nullopt;
}

std::optional<TSNode> field_of(TSNode node, std::string_view field) {
  const TSNode child =
      ts_node_child_by_field_name(node, field.data(), static_cast<std::uint32_t>(field.size()));
  if (ts_node_is_null(child)) return std::nullopt;
  return child;
}

}  // namespace kestrix::index
