#pragma once

#include <cstdint>
#include <string_view>

namespace kestrix::index {

/// A 64-bit hash (MurmurHash64A) of a file's bytes, the same on every machine. It tells whether a
/// file that was touched also changed; nothing that must withstand a forger relies on it.
std::uint64_t content_hash(std::string_view bytes);

/// Sums up a sequence of values in 64 bits, to tell damage from the real thing.
class Digest {
 public:
  void add(std::uint64_t number) { value_ = (value_ ^ number) * kFactor + (value_ >> kShift); }
  void add(std::string_view text) { add(content_hash(text)); }
  std::uint64_t value() const { return value_; }

 private:
  static constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
  static constexpr unsigned kShift = 29;
  std::uint64_t value_ = 0;
};

}  // namespace kestrix::index
