#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

enum class DeclarationKind : std::uint8_t {
  kClass,
  kStruct,
  kEnum,
  kInterface,
  kTrait,
  kProtocol,
  kRecord,
  kObject,
  kAlias,  ///< a name for another type
  kFunction,
  kMethod,
  kConstant,
  kVariable,
  kField,   ///< what each value of a type holds
  kMember,  ///< one name of an enumeration
  kModule,  ///< a namespace inside a file
  kMacro,
};

inline constexpr std::array<std::string_view, 17> kDeclarationKindNames = {
    "class",    "struct", "enum",     "interface", "trait", "protocol", "record", "object", "alias",
    "function", "method", "constant", "variable",  "field", "member",   "module", "macro"};

constexpr std::string_view to_string(DeclarationKind kind) {
  return kDeclarationKindNames[static_cast<std::size_t>(kind)];
}

constexpr bool is_type(DeclarationKind kind) { return kind <= DeclarationKind::kAlias; }

/// What a constant or variable holds, as far as its initial value shows it.
enum class ValueShape : std::uint8_t {
  kUnknown,
  kScalar,    ///< a number, text, flag
  kStrings,   ///< a literal table whose elements are texts or numbers
  kNames,     ///< a literal table that names declarations
  kRecords,   ///< a literal table of tables, or of values that are made alike
  kInstance,  ///< what a call made
  kEmpty,     ///< an empty table, to be filled elsewhere
};

/// Something that a file declares. A fact of that file alone.
struct Declaration {
  DeclarationKind kind = DeclarationKind::kClass;
  std::string name{};
  std::uint32_t line = 0;       ///< 1-based
  std::uint32_t last_line = 0;  ///< 1-based
  std::uint32_t container = 0;  ///< place of what it stands in, counted from one; 0: in none
  bool exported = true;         ///< whether other files can reach it
  bool is_abstract = false;     ///< says so, or is a method without a body of its own
  ValueShape shape = ValueShape::kUnknown;
  std::uint32_t size = 0;  ///< entries of the literal table

  // Of types: their own members, not inherited ones.
  std::uint32_t fields = 0;
  std::uint32_t methods = 0;
  std::uint32_t abstract_methods = 0;

  std::vector<std::string> bases{};  ///< of types: what they extend and implement, as written

  friend bool operator==(const Declaration&, const Declaration&) = default;
};

}  // namespace kestrix::index
