#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/store/corrupt_index.h"

namespace kestrix::index {

/// Writes numbers seven bits a byte, the lowest first; texts and lists begin with their length.
class Encoder {
 public:
  void number(std::uint64_t value) {
    for (; value >= 0x80; value >>= 7U) bytes_ += static_cast<char>(value | 0x80);
    bytes_ += static_cast<char>(value);
  }

  void text(std::string_view value) {
    number(value.size());
    bytes_ += value;
  }

  template <class Item, class Write>
  void list(const std::vector<Item>& items, Write write) {
    number(items.size());
    for (const Item& item : items) write(*this, item);
  }

  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

/// Reads what an Encoder wrote. Throws `CorruptIndex` for anything else.
class Decoder {
 public:
  explicit Decoder(std::string_view bytes) : rest_(bytes) {}

  template <class Number>
  Number number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const auto byte = static_cast<unsigned char>(bytes(1).front());
      value |= std::uint64_t{byte & 0x7FU} << shift;
      if (byte < 0x80) return checked<Number>(value);
    }
    throw CorruptIndex("a number without end");
  }

  /// A view of the bytes that are read.
  std::string_view text() { return bytes(number<std::size_t>()); }

  template <class Item, class Read>
  std::vector<Item> list(Read read) {
    const auto count = number<std::size_t>();
    if (count > rest_.size()) throw CorruptIndex("a list beyond its end");
    std::vector<Item> items;
    items.reserve(count);
    for (std::size_t i = 0; i < count; ++i) items.push_back(read(*this));
    return items;
  }

  std::string_view rest() const { return rest_; }

 private:
  template <class Number>
  static Number checked(std::uint64_t value) {
    if (value > std::numeric_limits<Number>::max()) throw CorruptIndex("a number out of range");
    return static_cast<Number>(value);
  }

  std::string_view bytes(std::size_t count) {
    if (count > rest_.size()) throw CorruptIndex("bytes that break off");
    const auto result = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return result;
  }

  std::string_view rest_;
};

}  // namespace kestrix::index
