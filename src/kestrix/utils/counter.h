#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "kestrix/utils/ordered_map.h"

namespace kestrix {

/// An insertion-ordered multiset: how much has been counted for each key.
///
/// Keys iterate in the order in which they were first counted. Reading never adds a key. `Count`
/// is any number type whose default value is zero.
template <class Key, class Count>
class Counter {
 public:
  using Entry = std::pair<Key, Count>;

  /// Adds `amount` to the key's count. The first addition creates the key, whatever the amount.
  template <class K>
  void add(const K& key, const Count& amount) {
    auto found = counts_.find(key);
    if (found == counts_.end()) found = counts_.try_emplace(Key(key), Count{}).first;
    found.value() += amount;
  }

  /// The key's count; zero for a key never counted.
  template <class K>
  Count operator[](const K& key) const {
    const auto found = counts_.find(key);
    return found == counts_.end() ? Count{} : found->second;
  }

  template <class K>
  bool contains(const K& key) const {
    return counts_.find(key) != counts_.end();
  }

  /// True when no key was ever counted; a key whose count is zero makes it non-empty.
  bool empty() const { return counts_.empty(); }
  std::size_t size() const { return counts_.size(); }
  auto begin() const { return counts_.begin(); }
  auto end() const { return counts_.end(); }

  /// The first `k` entries by count, highest first; ties in first-counted order.
  std::vector<Entry> most_common(std::size_t k) const {
    if (k == 1) return strongest();
    std::vector<Entry> entries(begin(), end());
    std::ranges::stable_sort(entries, std::ranges::greater{}, &Entry::second);
    if (k < entries.size()) entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(k), entries.end());
    return entries;
  }

  friend bool operator==(const Counter& a, const Counter& b) {
    return std::ranges::equal(a.counts_, b.counts_);
  }

 private:
  std::vector<Entry> strongest() const {
    const auto best = std::ranges::max_element(counts_, {}, &Entry::second);
    return best == counts_.end() ? std::vector<Entry>{} : std::vector<Entry>{Entry(*best)};
  }

  OrderedMap<Key, Count> counts_;
};

}  // namespace kestrix
