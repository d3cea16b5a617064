#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kestrix/facts/symbol_kind.h"

namespace kestrix::index {

/// One symbol as it stands in a file.
struct SymbolFact {
  SymbolKind kind;
  std::string name;
  std::string signature;   ///< the declaration's head up to its body, on one line
  std::uint32_t line = 0;  ///< 1-based

  friend bool operator==(const SymbolFact&, const SymbolFact&) = default;
};

/// A name with the number of times that the file uses it.
struct NameUse {
  std::string name;
  std::uint32_t uses = 0;

  friend bool operator==(const NameUse&, const NameUse&) = default;
};

/// One name that an import statement brings in.
struct ImportedName {
  std::string name{};      ///< as its module knows it; "*" for all of them
  std::string exported{};  ///< the name under which this file hands it on ("*" for all under their
                           ///< own); "" when it does not
  std::uint32_t uses = 0;  ///< uses of the name that it is bound to here

  friend bool operator==(const ImportedName&, const ImportedName&) = default;
};

/// One import statement (or include, require, use, mod) as written.
///
/// `form` tells apart what the language writes differently (quotes or angle brackets, static,
/// wildcard, re-export …); its values belong to the language, which documents them.
struct ImportFact {
  std::string module{};  ///< "a.b", "../x", "java.util.List", "crate::a::b", "vector"
  std::uint16_t form = 0;
  std::uint16_t level = 0;            ///< leading dots of a relative import; 0 where there are none
  std::vector<ImportedName> names{};  ///< in source order
  std::uint32_t uses = 0;  ///< uses of what the statement binds as a whole (the module's name)
  std::uint32_t line = 0;  ///< 1-based

  friend bool operator==(const ImportFact&, const ImportFact&) = default;
};

/// Everything that a reader takes from one file. Edges and symbols are made from facts alone, and
/// facts are stored, so a refresh reads only the files that changed.
struct FileFacts {
  std::string package;                ///< the package, namespace or module that the file declares
  std::vector<SymbolFact> symbols;    ///< in source order
  std::vector<ImportFact> imports;    ///< in source order
  std::vector<std::string> declares;  ///< names that other files can reach: types and, where the
                                      ///< language imports them, functions and values; ascending
  std::vector<NameUse> uses;  ///< only for languages whose packages need no import: type-like
                              ///< names that are used and not declared here; ascending

  friend bool operator==(const FileFacts&, const FileFacts&) = default;
};

}  // namespace kestrix::index
