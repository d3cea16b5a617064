#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrix {

/// Where a file's definitions come from, the nearest to the product first. Aside from it stand
/// samples, documentation, and what serves its developers: scripts, helpers of tests.
enum class DataOrigin { kProduct, kAside, kMigration, kGenerated, kVendored };

/// What was seen in one file: each count is of definitions that pass the whole test, not of words.
struct DataSignals {
  DataOrigin origin = DataOrigin::kProduct;
  std::uint32_t tables = 0;       ///< DDL that creates a table or type, also in string literals
  std::uint32_t alterations = 0;  ///< DDL that adds to a table
  std::uint32_t entities = 0;     ///< classes that are mapped to storage
  std::uint32_t schemas = 0;      ///< definitions in a schema language, and validated models
  std::uint32_t records = 0;      ///< plain data classes
  std::uint32_t columns = 0;      ///< mapped members of the entities; only breaks ties
  bool schema_file = false;       ///< the whole file is written in a schema language

  friend bool operator==(const DataSignals&, const DataSignals&) = default;
};

/// Whether the name of a file can be that of one that defines data: source in a language that may
/// hold DDL or data classes, or a schema. Lock files and a package manager's manifests are not.
bool may_define_data(std::string_view path);

/// What `text`, the content of `path`, defines. Linear in the text; keeps nothing.
DataSignals data_signals(std::string_view path, std::string_view text);

/// One line that explains a pick: "product tables=2 entities=0 …".
std::string to_string(const DataSignals& signals);

}  // namespace kestrix
