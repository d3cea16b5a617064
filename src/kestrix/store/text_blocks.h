#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// Keeps copies of many short texts in few allocations. Copies stay where they are until the blocks
/// go, also when the object is moved.
class TextBlocks {
 public:
  std::string_view keep(std::string_view text) {
    if (text.empty()) return {};
    if (text.size() > left_) grow(text.size());
    char* place = blocks_.back().get() + (capacity_ - left_);
    std::memcpy(place, text.data(), text.size());
    left_ -= text.size();
    return {place, text.size()};
  }

 private:
  static constexpr std::size_t kBlockBytes = std::size_t{256} << 10;

  void grow(std::size_t needed) {
    capacity_ = std::max(kBlockBytes, needed);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(capacity_));
    left_ = capacity_;
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t capacity_ = 0;
  std::size_t left_ = 0;
};

}  // namespace kestrix::index
