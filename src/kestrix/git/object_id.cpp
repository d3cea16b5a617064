#include "kestrix/git/object_id.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string>

namespace kestrix::index {
namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kRounds = 80;

// FIPS 180-4.
class Sha1 {
 public:
  void add(std::string_view bytes) {
    length_ += bytes.size();
    while (!bytes.empty()) {
      const auto part = bytes.substr(0, kBlock - pending_.size());
      pending_.append(part);
      bytes.remove_prefix(part.size());
      if (pending_.size() == kBlock) take_block();
    }
  }

  ObjectId finish() {
    const std::uint64_t bits = length_ * 8;
    add("\x80");
    while (pending_.size() != kBlock - 8) add(std::string_view("\0", 1));
    std::string end;
    for (unsigned shift = 64; shift > 0; shift -= 8) {
      end += static_cast<char>(bits >> (shift - 8));
    }
    add(end);
    ObjectId id{};
    for (std::size_t at = 0; at < id.size(); ++at) {
      id[at] = static_cast<std::uint8_t>(state_[at / 4] >> (24 - at % 4 * 8));
    }
    return id;
  }

 private:
  void take_block() {
    std::array<std::uint32_t, kRounds> words{};
    for (std::size_t at = 0; at < kBlock; ++at) {
      words[at / 4] = words[at / 4] << 8U | static_cast<std::uint8_t>(pending_[at]);
    }
    for (std::size_t at = 16; at < kRounds; ++at) {
      words[at] = std::rotl(words[at - 3] ^ words[at - 8] ^ words[at - 14] ^ words[at - 16], 1);
    }
    auto [a, b, c, d, e] = state_;
    for (std::size_t round = 0; round < kRounds; ++round) {
      const std::uint32_t next =
          std::rotl(a, 5) + mixed(round / 20, b, c, d) + e + kConstants[round / 20] + words[round];
      e = d;
      d = c;
      c = std::rotl(b, 30);
      b = a;
      a = next;
    }
    const std::array<std::uint32_t, 5> sums{a, b, c, d, e};
    for (std::size_t at = 0; at < sums.size(); ++at) state_[at] += sums[at];
    pending_.clear();
  }

  static std::uint32_t mixed(std::size_t phase, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    if (phase == 0) return (b & c) | (~b & d);
    if (phase == 2) return (b & c) | (b & d) | (c & d);
    return b ^ c ^ d;
  }

  static constexpr std::array<std::uint32_t, 4> kConstants{0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC,
                                                           0xCA62C1D6};

  std::array<std::uint32_t, 5> state_{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  std::string pending_;
  std::uint64_t length_ = 0;
};

}  // namespace

ObjectId blob_id(std::string_view content) {
  Sha1 sum;
  sum.add(fmt::format("blob {}", content.size()));
  sum.add(std::string_view("\0", 1));
  sum.add(content);
  return sum.finish();
}

}  // namespace kestrix::index
