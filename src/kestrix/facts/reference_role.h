#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrix::index {

/// What a file does with a name.
enum class Role : std::uint8_t {
  kExtends,     ///< base class, embedded type, conformance to a type with a body
  kImplements,  ///< interface, trait, mixin
  kConstructs,  ///< makes a value of the type
  kCalls,       ///< calls the function or static method
  kType,        ///< in the position of a type: field, parameter, result, generic argument
  kThrows,      ///< raises, throws, or returns as an error
  kCatches,     ///< catches it, or tests whether a value is one
  kAnnotates,   ///< decorator, annotation, attribute, derive
  kLists,       ///< element of a literal table, arm of a match, value handed to a call
  kString,      ///< named by a whole string
  kReads,       ///< reads the environment variable, flag or setting of that key
  kUses,        ///< any other mention
};

inline constexpr std::array<std::string_view, 12> kRoleNames = {
    "extends", "implements", "constructs", "calls",  "type",  "throws",
    "catches", "annotates",  "lists",      "string", "reads", "uses"};

constexpr std::string_view to_string(Role role) {
  return kRoleNames[static_cast<std::size_t>(role)];
}

constexpr std::optional<Role> role_named(std::string_view name) {
  for (std::size_t at = 0; at < kRoleNames.size(); ++at) {
    if (kRoleNames[at] == name) return static_cast<Role>(at);
  }
  return std::nullopt;
}

}  // namespace kestrix::index
