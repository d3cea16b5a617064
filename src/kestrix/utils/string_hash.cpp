#include "kestrix/utils/string_hash.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <random>

namespace kestrix {
namespace {

struct Key {
  std::uint64_t first;
  std::uint64_t second;
};

Key random_key() {
  std::random_device device;
  const auto number = [&] { return (std::uint64_t{device()} << 32U) | device(); };
  const std::uint64_t first = number();
  return {first, number()};
}

class SipState {
 public:
  explicit SipState(const Key& key)
      : a_(key.first ^ 0x736f6d6570736575),
        b_(key.second ^ 0x646f72616e646f6d),
        c_(key.first ^ 0x6c7967656e657261),
        d_(key.second ^ 0x7465646279746573) {}

  void add(std::uint64_t word) {
    d_ ^= word;
    round();
    a_ ^= word;
  }

  std::uint64_t finish() {
    c_ ^= 0xff;
    for (int i = 0; i < 3; ++i) round();
    return a_ ^ b_ ^ c_ ^ d_;
  }

 private:
  void round() {
    a_ += b_;
    b_ = std::rotl(b_, 13) ^ a_;
    a_ = std::rotl(a_, 32);
    c_ += d_;
    d_ = std::rotl(d_, 16) ^ c_;
    a_ += d_;
    d_ = std::rotl(d_, 21) ^ a_;
    c_ += b_;
    b_ = std::rotl(b_, 17) ^ c_;
    c_ = std::rotl(c_, 32);
  }

  std::uint64_t a_;
  std::uint64_t b_;
  std::uint64_t c_;
  std::uint64_t d_;
};

}  // namespace

std::uint64_t string_hash(std::string_view bytes) {
  static const Key key = random_key();
  SipState state(key);
  std::uint64_t word = 0;
  std::uint64_t last = std::uint64_t{bytes.size()} << 56U;
  for (; bytes.size() >= sizeof word; bytes.remove_prefix(sizeof word)) {
    std::memcpy(&word, bytes.data(), sizeof word);
    state.add(word);
  }
  std::memcpy(&last, bytes.data(), bytes.size());
  state.add(last);
  return state.finish();
}

}  // namespace kestrix
