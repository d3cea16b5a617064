#pragma once

#include <tree_sitter/api.h>

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
  /// Name of the field that the node has in its parent; null when it has none.
  const char* field() const { return ts_tree_cursor_current_field_name(&cursor_); }
  bool to_parent() { return ts_tree_cursor_goto_parent(&cursor_); }
  bool to_next_sibling() { return ts_tree_cursor_goto_next_sibling(&cursor_); }
  bool to_first_child() { return ts_tree_cursor_goto_first_child(&cursor_); }

 private:
  TSTreeCursor cursor_;
};

}  // namespace kestrix::index
