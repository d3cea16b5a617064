#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kestrix/index/tables/declaration_table.h"

namespace kestrix::index {

/// What a name stands for.
struct NamedThing {
  enum class Kind : std::uint8_t {
    kNothing,      ///< nothing for certain
    kDeclaration,  ///< `at`
    kFile,         ///< the file `at.file`, or something in it that `rest` names
    kOutside,      ///< not of the repository; `rest` is its full name
  };

  static NamedThing declaration(DeclarationRef at) { return {Kind::kDeclaration, at, {}}; }
  static NamedThing file(FileId file, std::string_view rest = {}) {
    return {Kind::kFile, {file, 0}, std::string(rest)};
  }

  Kind kind = Kind::kNothing;
  DeclarationRef at{};
  std::string rest{};  ///< of a declaration: the parts of the name that led no further
};

// The parts of dotted names.

inline std::string_view first_part(std::string_view path) { return path.substr(0, path.find('.')); }

/// What follows the first `length` bytes and the dot behind them.
inline std::string_view behind(std::string_view path, std::size_t length) {
  return path.size() <= length ? std::string_view() : path.substr(length + 1);
}

inline std::string joined(std::string_view holder, std::string_view name) {
  return std::string(holder).append(".").append(name);
}

}  // namespace kestrix::index
