#pragma once

#include <tree_sitter/api.h>

#include <string_view>

namespace kestrix::index {

/// An owned cursor over a syntax tree; the tree must outlive it. Moving is cheap in every
/// direction and never recurses.
class TreeCursor {
 public:
  explicit TreeCursor(TSNode node) : cursor_(ts_tree_cursor_new(node)) {}
  ~TreeCursor() { ts_tree_cursor_delete(&cursor_); }
  TreeCursor(const TreeCursor&) = delete;
  TreeCursor& operator=(const TreeCursor&) = delete;

  TSNode node() const { return ts_tree_cursor_current_node(&cursor_); }
  /// The field that the node has in its parent; "" and 0 when it has none.
  std::string_view field() const {
    const char* name = ts_tree_cursor_current_field_name(&cursor_);
    return name == nullptr ? std::string_view() : std::string_view(name);
  }
  TSFieldId field_id() const { return ts_tree_cursor_current_field_id(&cursor_); }
  bool to_parent() { return ts_tree_cursor_goto_parent(&cursor_); }
  bool to_next_sibling() { return ts_tree_cursor_goto_next_sibling(&cursor_); }
  bool to_first_child() { return ts_tree_cursor_goto_first_child(&cursor_); }

 private:
  TSTreeCursor cursor_;
};

}  // namespace kestrix::index
