#include "kestrix/store/content_hash.h"

#include <blake2.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace kestrix::index {

ContentHash content_hash(std::string_view bytes) {
  ContentHash hash{};
  blake2b(hash.data(), bytes.data(), nullptr, hash.size(), bytes.size(), 0);
  return hash;
}

std::uint64_t quick_hash(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

}  // namespace kestrix::index
