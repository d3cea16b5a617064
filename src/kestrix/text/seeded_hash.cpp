#include "kestrix/text/seeded_hash.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <random>

namespace kestrix {
namespace {

std::uint64_t random_seed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32U) | device();
}

}  // namespace

std::uint64_t seeded_hash(std::string_view bytes, std::uint64_t more) {
  static const std::uint64_t seed = random_seed();
  return XXH3_64bits_withSeed(bytes.data(), bytes.size(), seed ^ (more * 0x9E3779B97F4A7C15ULL));
}

}  // namespace kestrix
