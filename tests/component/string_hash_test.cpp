#include "kestrix/utils/string_hash.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <set>
#include <string>

namespace kestrix::test {
namespace {

constexpr std::uint64_t kFactor = 0xc6a4a7935bd1e995;  // of the standard library's hash

std::uint64_t inverse(std::uint64_t odd) {
  std::uint64_t result = odd;
  for (int i = 0; i < 6; ++i) result *= 2 - odd * result;
  return result;
}

std::uint64_t mixed(std::uint64_t word) {
  word *= kFactor;
  return (word ^ (word >> 47U)) * kFactor;
}

std::uint64_t unmixed(std::uint64_t word) {
  word *= inverse(kFactor);
  return (word ^ (word >> 47U)) * inverse(kFactor);
}

// Names that fall together in a table without a key: the second word takes back what the first did.
std::string colliding_name(std::uint64_t number) {
  constexpr std::uint64_t kAim = 0x123456789abcdef1;
  std::uint64_t state = 0xc70f6907 ^ (16 * kFactor);
  state = (state ^ mixed(number)) * kFactor;
  const std::uint64_t words[2] = {number, unmixed(state ^ (kAim * inverse(kFactor)))};
  std::string name(sizeof words, '\0');
  std::memcpy(name.data(), words, sizeof words);
  return name;
}

TEST(StringHash, KeepsApartWhatAHashWithoutAKeyDoesNot) {
  const auto plain = [](const std::string& name) { return std::hash<std::string>{}(name); };
  if (plain(colliding_name(1)) != plain(colliding_name(2))) GTEST_SKIP() << "another library";
  std::set<std::uint64_t> hashes;
  for (std::uint64_t i = 0; i < 1000; ++i) hashes.insert(string_hash(colliding_name(i)));
  EXPECT_EQ(hashes.size(), 1000U);
}

TEST(StringHash, TakesEveryByteAndTheLength) {
  std::set<std::uint64_t> hashes;
  std::size_t texts = 0;
  for (std::size_t length = 0; length <= 20; ++length) {
    const std::string zeros(length, '\0');
    EXPECT_EQ(string_hash(zeros), string_hash(std::string(length + 1, '\0').substr(1)));
    hashes.insert(string_hash(zeros));
    ++texts;
    for (std::size_t at = 0; at < length; ++at, ++texts) {
      std::string other = zeros;
      other[at] = 'a';
      hashes.insert(string_hash(other));
    }
  }
  EXPECT_EQ(hashes.size(), texts);
}

}  // namespace
}  // namespace kestrix::test
