#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace kestrix {

/// What a place in a source may be. Those of the second group are looked at more closely before
/// they count.
enum class EvidenceKind {
  kTable,
  kEntity,
  kSchema,
  kRecord,
  kColumn,
  kMapping,  ///< a member that only a mapped class has; counts the class if nothing else does

  kDdl,
  kDdlCall,        ///< a call of a migration library that creates a table
  kMessage,        ///< a message of an interface language, unless it is what a call takes or gives
  kPythonClass,    ///< a class with bases; ends at their parenthesis
  kMongoose,       ///< a schema, if the file uses the library at all
  kFields,         ///< a type that counts when its block only holds fields; ends at the brace
  kTaggedStruct,   ///< a Go struct that counts when its fields are tagged; ends at the brace
  kDerive,         ///< the traits that a Rust type derives; ends at their parenthesis
  kDialect,        ///< what says that a document is a schema
  kSchemaMembers,  ///< what such a document defines
};

/// One kind of evidence: where it starts, as an RE2 pattern without groups; "^" is a line's start.
struct Evidence {
  EvidenceKind kind;
  const char* pattern;
};

enum class DataSyntax {
  kCode,
  kScript,    ///< code whose template literals may hold more code
  kPython,    ///< code whose strings in triple quotes may hold more code
  kSchema,    ///< every definition of the file is one of data
  kDocument,  ///< JSON or YAML, a schema only if it says so
};

/// What definitions of data look like in one language, or in several that are written alike.
struct DataLanguage {
  std::span<const std::string_view> extensions;  ///< lower case, without the dot
  DataSyntax syntax;
  std::span<const Evidence> evidence;  ///< besides DDL, which every language may hold
};

/// The most kinds of evidence that one language lists.
inline constexpr std::size_t kMostEvidence = 8;

}  // namespace kestrix
