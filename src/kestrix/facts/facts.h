#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kestrix/facts/declaration.h"
#include "kestrix/facts/reference_role.h"
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
  std::string local{};     ///< the name that it is bound to here, where that is not `name`

  /// The name by which this file knows it.
  const std::string& bound() const { return local.empty() ? name : local; }

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
  std::string local{};     ///< the name to which the module as a whole is bound; "" for its own

  friend bool operator==(const ImportFact&, const ImportFact&) = default;
};

/// A name that the file mentions in a role, as written; nothing is known yet of what it stands for.
struct Mention {
  std::string name{};  ///< "Name", or "a.b.Name" with "." whatever the language writes between
  Role role = Role::kUses;
  std::uint32_t within = 0;  ///< place of the declaration that holds it, from one; 0: in none
  std::uint32_t line = 0;    ///< of the first such mention, 1-based
  std::uint32_t count = 0;

  friend bool operator==(const Mention&, const Mention&) = default;
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
  std::vector<Declaration> declarations{};  ///< in source order; a container before its members
  std::vector<Mention> mentions{};          ///< by name, role, holder; each combination once
  std::uint32_t dropped = 0;                ///< declarations and mentions beyond the limits

  friend bool operator==(const FileFacts&, const FileFacts&) = default;
};

}  // namespace kestrix::index
