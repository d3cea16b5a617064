#include "kestrix/store/edge_codec.h"

#include <bit>

#include "kestrix/store/byte_codec.h"

namespace kestrix::index {

std::string_view to_string(EdgeEvidence evidence) {
  switch (evidence) {
    case EdgeEvidence::kImport:
      return "import";
    case EdgeEvidence::kReference:
      return "reference";
    case EdgeEvidence::kString:
      return "string";
  }
  return {};
}

// The bytes of a weight are turned around: those of small whole numbers end in many zeros.
std::string encode_edges(std::span<const StoredEdge> edges) {
  Encoder to;
  for (const StoredEdge& edge : edges) {
    to.number((static_cast<std::uint64_t>(edge.target) << 2U) |
              static_cast<std::uint64_t>(edge.evidence));
    to.number(__builtin_bswap64(std::bit_cast<std::uint64_t>(edge.weight)));
  }
  return to.take();
}

std::vector<StoredEdge> decode_edges(std::string_view bytes) {
  std::vector<StoredEdge> edges;
  for (Decoder from(bytes); !from.rest().empty();) {
    const auto target = from.number<std::uint64_t>();
    if ((target & 3U) > static_cast<std::uint64_t>(EdgeEvidence::kString)) {
      throw CorruptIndex("an edge without evidence");
    }
    const auto weight = __builtin_bswap64(from.number<std::uint64_t>());
    edges.push_back({static_cast<std::int64_t>(target >> 2U), std::bit_cast<double>(weight),
                     static_cast<EdgeEvidence>(target & 3U)});
  }
  return edges;
}

}  // namespace kestrix::index
