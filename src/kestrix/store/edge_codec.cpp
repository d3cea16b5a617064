#include "kestrix/store/edge_codec.h"

#include <bit>

#include "kestrix/store/byte_codec.h"

namespace kestrix::index {

// The bytes of a weight are turned around: those of small whole numbers end in many zeros.
std::string encode_edges(std::span<const StoredEdge> edges) {
  Encoder to;
  for (const StoredEdge& edge : edges) {
    to.number(static_cast<std::uint64_t>(edge.target));
    to.number(__builtin_bswap64(std::bit_cast<std::uint64_t>(edge.weight)));
  }
  return to.take();
}

std::vector<StoredEdge> decode_edges(std::string_view bytes) {
  std::vector<StoredEdge> edges;
  for (Decoder from(bytes); !from.rest().empty();) {
    const auto target = static_cast<std::int64_t>(from.number<std::uint64_t>());
    const auto weight = __builtin_bswap64(from.number<std::uint64_t>());
    edges.push_back({target, std::bit_cast<double>(weight)});
  }
  return edges;
}

}  // namespace kestrix::index
