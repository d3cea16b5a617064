#pragma once

#include <string_view>

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

// The shapes that most rules of most languages have, for tables that read like lists.

constexpr CodeRule act(std::string_view node, Act act) { return {.node = node, .act = act}; }
constexpr CodeRule pass(std::string_view node) { return {.node = node}; }
constexpr CodeRule pass(std::string_view node, Role role) { return {.node = node, .role = role}; }
constexpr CodeRule scalar(std::string_view node) { return {.node = node, .act = Act::kScalar}; }
constexpr CodeRule skip(std::string_view node, std::string_view parent = {},
                        std::string_view field = {}) {
  return {.node = node, .parent = parent, .field = field, .act = Act::kSkip};
}
constexpr CodeRule declare(std::string_view node, DeclarationKind kind) {
  return {.node = node, .act = Act::kDeclare, .kind = kind};
}

}  // namespace kestrix::index
