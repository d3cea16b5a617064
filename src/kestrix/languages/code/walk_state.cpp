#include "kestrix/languages/code/walk_state.h"

#include <algorithm>

#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {

bool WalkState::push(const Frame& frame, TSNode node) {
  if (ts_node_child_count(node) == 0) return false;
  if (frame.scope) locals.enter(!frame.of_type);
  frames.push_back(frame);
  frames.back().node = node;
  return true;
}

void WalkState::pop() {
  const Frame& frame = frames.back();
  if (frame.binds.id != nullptr) bind(frame.binds);
  if (frame.scope) locals.leave(!frame.of_type);
  frames.pop_back();
}

void WalkState::bind(TSNode node) {
  TreeCursor cursor(node);
  if (!cursor.to_first_child()) return locals.bind(tree.text(node));
  do {
    if (ts_node_is_named(cursor.node()) && ts_node_child_count(cursor.node()) == 0) {
      locals.bind(tree.text(cursor.node()));
    }
  } while (cursor.to_next_sibling());
}

void WalkState::bind_to_declaration(TSNode node) {
  const auto frame = std::find_if(frames.rbegin(), frames.rend(),
                                  [](const Frame& up) { return up.declared > 0 || up.scope; });
  if (frame == frames.rend()) return;
  if (!frame->scope) {
    locals.enter(false);
    frame->scope = true;
    frame->of_type = true;
  }
  locals.bind_here(tree.text(node));
}

void WalkState::bind_name(std::string_view name) {
  if (source.variables == '\0') locals.bind(name);
}

bool WalkState::is_in_type(std::uint32_t holder) const {
  return holder > 0 && is_type(facts.declarations[holder - 1].kind);
}

bool WalkState::is_local(std::uint32_t holder) const {
  if (holder == 0) return locals.in_function();
  const DeclarationKind kind = facts.declarations[holder - 1].kind;
  return is_callable(kind) || (locals.in_function() && !is_type(kind));
}

bool WalkState::makes_type() const {
  const std::uint32_t declared = frames.back().declared;
  return declared > 0 && is_type(facts.declarations[declared - 1].kind);
}

}  // namespace kestrix::index
