#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "kestrix/facts/declaration.h"
#include "kestrix/facts/reference_role.h"
#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

bool is_callable(DeclarationKind kind);
bool is_value(DeclarationKind kind);
bool is_member(DeclarationKind kind);
bool is_of(Role role, std::initializer_list<Role> roles);

/// Behind anything that the rules do not know, a name is no longer what is listed or called.
Role beyond(Role role);
/// "raise Name(…)" throws what it makes, "@name(…)" annotates with what it calls.
Role called(Role around, Role role);
/// Whether the rule's role says more than what is known already.
bool says_more(const CodeRule& rule, Role known);

/// What holds for the children of a node.
struct Frame {
  TSNode node{};
  TSSymbol symbol = 0;
  Act act = Act::kPass;
  Role role = Role::kUses;
  std::uint32_t holder = 0;      ///< the declaration that they stand in, from one
  const void* name = nullptr;    ///< the child that is a declared name
  const void* object = nullptr;  ///< the child that is named with what is called of it
  const void* first = nullptr;   ///< the only argument that has the role of the arguments
  const void* callee = nullptr;  ///< of calls; of one without a callee itself
  TSFieldId arguments = 0;       ///< and the field of what they are called with
  Role callee_role = Role::kCalls;
  Role argument_role = Role::kLists;
  bool scope = false;            ///< names bound in it are its own
  bool of_type = false;          ///< and it is a type's or a block's
  bool ahead = false;            ///< annotations belong to the declaration that follows
  bool keyed = false;            ///< keys name members
  bool nameless = false;         ///< members belong to a type without a name
  bool member = false;           ///< names are those of members, but for type arguments
  std::optional<Role> errors{};  ///< of names that stand for errors
  TSFieldId names = 0;           ///< of a declaration: the field of its names
  std::uint32_t declared = 0;    ///< and its place; 0: its names are local
  TSNode binds{};                ///< names that are local when the node has ended
  std::string_view owner{};      ///< the type that is declared elsewhere
  bool hidden = false;           ///< members from here on are
  bool body = false;             ///< its block belongs to the type around
  std::uint32_t around = 0;      ///< what the macros around say, in `contexts`
  std::uint32_t path = 0;        ///< start of a path that is more than names, from one; 0: none
  Role path_role = Role::kUses;
};

/// What holds for the children of a node before its own rule has its say; `up` is the frame around.
Frame frame_below(const Frame& up, TSNode node, TSFieldId field);

}  // namespace kestrix::index
