#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// A dependency of a file, as it is stored with the file.
struct StoredEdge {
  std::int64_t target;  ///< the row of a file
  double weight;
};

/// The dependencies of one file as compact bytes; "" when it has none.
std::string encode_edges(std::span<const StoredEdge> edges);

/// The inverse. Throws `CorruptIndex` when `bytes` are no encoded edges.
std::vector<StoredEdge> decode_edges(std::string_view bytes);

}  // namespace kestrix::index
