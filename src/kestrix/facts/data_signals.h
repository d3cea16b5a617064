#pragma once

#include <cstdint>

namespace kestrix {

/// What was seen in one file of definitions of data: each count is of definitions that pass the
/// whole test, not of words.
struct DataSignals {
  std::uint32_t tables = 0;       ///< DDL that creates a table or type, also in string literals
  std::uint32_t alterations = 0;  ///< DDL that adds to a table
  std::uint32_t entities = 0;     ///< classes that are mapped to storage
  std::uint32_t schemas = 0;      ///< definitions in a schema language, and validated models
  std::uint32_t records = 0;      ///< plain data classes
  std::uint32_t columns = 0;      ///< mapped members of the entities; only breaks ties
  bool schema_file = false;       ///< the whole file is written in a schema language
  bool made_by_program = false;   ///< the text says or shows that a program wrote it; only told of
                                  ///< a text that has definitions

  /// Whether there is any definition.
  bool any() const { return (tables | alterations | entities | schemas | records | columns) != 0; }

  friend bool operator==(const DataSignals&, const DataSignals&) = default;
};

}  // namespace kestrix
