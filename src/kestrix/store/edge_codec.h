#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// What shows that a file depends on another.
enum class EdgeEvidence : std::uint8_t {
  kImport,     ///< an import, an include, a use of the same package
  kReference,  ///< it names what the other declares, though no import says so
  kString,     ///< only strings name it
};

/// "import", "reference" or "string".
std::string_view to_string(EdgeEvidence evidence);

/// A dependency of a file, as it is stored with the file.
struct StoredEdge {
  std::int64_t target;  ///< the row of a file
  double weight;
  EdgeEvidence evidence = EdgeEvidence::kImport;
};

/// The dependencies of one file as compact bytes; "" when it has none.
std::string encode_edges(std::span<const StoredEdge> edges);

/// The inverse. Throws `CorruptIndex` when `bytes` are no encoded edges.
std::vector<StoredEdge> decode_edges(std::string_view bytes);

}  // namespace kestrix::index
