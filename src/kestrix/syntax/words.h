#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// How often each word occurs. Keys view the counted text, which must outlive them.
class WordCounts {
 public:
  struct Entry {
    std::string_view word;
    std::uint32_t count = 0;
  };

  /// Forgets everything and makes room for the words of a text of `bytes` bytes.
  void reset(std::size_t bytes);

  void add(std::string_view word);
  /// Takes one occurrence back; a word that was never added stays at zero.
  void remove(std::string_view word);

  /// Zero for a word that was never added.
  std::uint32_t operator[](std::string_view word) const;

  /// The words that occur, ascending by bytes.
  std::vector<Entry> entries() const;

 private:
  Entry& slot(std::string_view word);
  const Entry& slot(std::string_view word) const;
  void grow();

  std::vector<Entry> slots_;  // open addressing; the size is a power of two
  std::size_t used_ = 0;
};

}  // namespace kestrix::index
