#include "kestrix/store/content_hash.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace kestrix::index {
namespace {

constexpr std::uint64_t kFactor = 0xC6A4A7935BD1E995;
constexpr unsigned kShift = 47;
constexpr std::size_t kWordBytes = sizeof(std::uint64_t);

// Up to eight bytes as a little-endian number, on every machine.
std::uint64_t word_of(const char* bytes, std::size_t count) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

std::uint64_t mixed(std::uint64_t word) {
  word *= kFactor;
  word ^= word >> kShift;
  return word * kFactor;
}

}  // namespace

std::uint64_t content_hash(std::string_view bytes) {
  std::uint64_t hash = bytes.size() * kFactor;
  for (; bytes.size() >= kWordBytes; bytes.remove_prefix(kWordBytes)) {
    hash = (hash ^ mixed(word_of(bytes.data(), kWordBytes))) * kFactor;
  }
  if (!bytes.empty()) hash = (hash ^ word_of(bytes.data(), bytes.size())) * kFactor;
  hash ^= hash >> kShift;
  hash *= kFactor;
  return hash ^ (hash >> kShift);
}

}  // namespace kestrix::index
