#include "kestrix/languages/code/frame.h"

#include <algorithm>

namespace kestrix::index {
namespace {

bool is_part_of_path(const Frame& up) {
  return up.path != 0 && (up.act == Act::kPath || up.act == Act::kPass);
}

}  // namespace

bool is_callable(DeclarationKind kind) {
  return kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
}

bool is_value(DeclarationKind kind) {
  return kind == DeclarationKind::kConstant || kind == DeclarationKind::kVariable;
}

bool is_member(DeclarationKind kind) {
  return kind == DeclarationKind::kField || kind == DeclarationKind::kMethod;
}

bool is_of(Role role, std::initializer_list<Role> roles) {
  return std::ranges::find(roles, role) != roles.end();
}

Role beyond(Role role) {
  return is_of(role, {Role::kLists, Role::kCalls, Role::kConstructs}) ? Role::kUses : role;
}

Role called(Role around, Role role) {
  return is_of(around, {Role::kThrows, Role::kAnnotates, Role::kExtends}) ? around : role;
}

bool says_more(const CodeRule& rule, Role known) {
  if (!rule.weak || known == Role::kUses) return true;
  return known == Role::kLists && !rule.keeps_lists;
}

Frame frame_below(const Frame& up, TSNode node, TSFieldId field) {
  Frame frame{.symbol = ts_node_symbol(node),
              .role = up.role,
              .holder = up.holder,
              .ahead = up.ahead,
              .keyed = up.keyed,
              .nameless = up.nameless,
              .member = up.member,
              .errors = up.errors,
              .owner = up.owner,
              .hidden = up.hidden,
              .around = up.around};
  if (is_part_of_path(up)) {
    frame.path = up.path;
    frame.path_role = up.path_role;
  }
  if (up.callee != nullptr && node.id == up.callee) {
    frame.role = called(up.role, up.callee_role);
  } else if (up.arguments != 0 && field == up.arguments) {
    frame.role = up.argument_role;
    frame.first = up.first;
  } else if (up.callee != nullptr) {
    // Without a field for them all that is no callee are arguments.
    frame.role = up.arguments == 0 ? up.argument_role : Role::kUses;
  } else if (up.first != nullptr && node.id != up.first) {
    frame.role = Role::kLists;
  }
  return frame;
}

}  // namespace kestrix::index
