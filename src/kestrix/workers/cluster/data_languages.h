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

  kDdl,
  kDdlCall,        ///< a call of a migration library that creates a table
  kPythonClass,    ///< a class with bases
  kMongoose,       ///< a schema, if the file uses the library at all
  kFields,         ///< a type that counts when its block only holds fields; ends at the brace
  kTaggedStruct,   ///< a Go struct that counts when its fields are tagged; ends at the brace
  kDerive,         ///< the traits that a Rust type derives
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
  kPython,    ///< code whose strings in triple quotes may hold more code
  kSchema,    ///< every definition of the file is one of data
  kDocument,  ///< JSON or YAML, a schema only if it says so
};

/// One row of the table of languages; adding a language touches no other row.
struct DataLanguageRow {
  std::span<const std::string_view> extensions;  ///< lower case, without the dot
  DataSyntax syntax;
  std::span<const Evidence> evidence;  ///< besides DDL, which every language may hold
};

/// The most kinds of evidence that one row lists.
inline constexpr std::size_t kMostEvidence = 8;

std::span<const DataLanguageRow> data_languages();

}  // namespace kestrix
