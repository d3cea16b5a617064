#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrix::index {

/// What a file's bytes come to: BLAKE2b in 128 bits. Nobody can make up a change that leaves it the
/// same, so equal hashes mean an unchanged file.
using ContentHash = std::array<std::uint8_t, 16>;

ContentHash content_hash(std::string_view bytes);

/// A hash that is quick and the same on every machine (XXH3), against damage and not forgers.
std::uint64_t quick_hash(std::string_view bytes);

/// Sums up a sequence of values in 64 bits, to tell damage from the real thing.
class Digest {
 public:
  void add(std::uint64_t number) { value_ = (value_ ^ number) * kFactor + (value_ >> kShift); }
  void add(std::string_view text) { add(quick_hash(text)); }
  void add(const ContentHash& hash) {
    add(std::string_view(reinterpret_cast<const char*>(hash.data()), hash.size()));
  }
  std::uint64_t value() const { return value_; }

 private:
  static constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
  static constexpr unsigned kShift = 29;
  std::uint64_t value_ = 0;
};

}  // namespace kestrix::index
