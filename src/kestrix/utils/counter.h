#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "kestrix/utils/ordered_map.h"

namespace kestrix {

/// An insertion-ordered multiset: how much has been counted for each key.
///
/// Keys iterate in the order in which they were first counted. Reading never adds a key. `Count`
/// is any number type whose default value is zero. Most counters of a dependency graph hold a key
/// or two, so the first few are searched one by one and hashed only when there are more.
template <class Key, class Count>
class Counter {
 public:
  using Entry = std::pair<Key, Count>;

  Counter() = default;
  Counter(const Counter& other) : few_(other.few_), many_(copy_of(other.many_)) {}
  Counter(Counter&&) noexcept = default;
  Counter& operator=(const Counter& other) {
    *this = Counter(other);
    return *this;
  }
  Counter& operator=(Counter&&) noexcept = default;
  ~Counter() = default;

  /// Adds `amount` to the key's count. The first addition creates the key, whatever the amount.
  template <class K>
  void add(const K& key, const Count& amount) {
    if (many_) {
      add_to_many(key, amount);
    } else if (const auto found = std::ranges::find(few_, key, &Entry::first);
               found != few_.end()) {
      found->second += amount;
    } else if (few_.size() < kFew) {
      few_.emplace_back(Key(key), Count{} + amount);
    } else {
      many_ =
          std::make_unique<Many>(std::move_iterator(few_.begin()), std::move_iterator(few_.end()));
      few_ = {};
      add_to_many(key, amount);
    }
  }

  /// The key's count; zero for a key never counted.
  template <class K>
  Count operator[](const K& key) const {
    const auto* found = find(key);
    return found == nullptr ? Count{} : found->second;
  }

  template <class K>
  bool contains(const K& key) const {
    return find(key) != nullptr;
  }

  /// True when no key was ever counted; a key whose count is zero makes it non-empty.
  bool empty() const { return entries().empty(); }
  std::size_t size() const { return entries().size(); }
  auto begin() const { return entries().begin(); }
  auto end() const { return entries().end(); }

  /// The first `k` entries by count, highest first; ties in first-counted order.
  std::vector<Entry> most_common(std::size_t k) const {
    if (k == 1) return strongest();
    std::vector<Entry> sorted(begin(), end());
    std::ranges::stable_sort(sorted, std::ranges::greater{}, &Entry::second);
    if (k < sorted.size())
      sorted.erase(std::next(sorted.begin(), static_cast<std::ptrdiff_t>(k)), sorted.end());
    return sorted;
  }

  friend bool operator==(const Counter& a, const Counter& b) { return a.entries() == b.entries(); }

 private:
  using Many = OrderedMap<Key, Count>;

  static constexpr std::size_t kFew = 8;

  static std::unique_ptr<Many> copy_of(const std::unique_ptr<Many>& many) {
    return many ? std::make_unique<Many>(*many) : nullptr;
  }

  const std::vector<Entry>& entries() const { return many_ ? many_->values_container() : few_; }

  template <class K>
  const Entry* find(const K& key) const {
    const auto found = many_ ? std::next(begin(), many_->find(key) - many_->begin())
                             : std::ranges::find(few_, key, &Entry::first);
    return found == end() ? nullptr : &*found;
  }

  template <class K>
  void add_to_many(const K& key, const Count& amount) {
    auto found = many_->find(key);
    if (found == many_->end()) found = many_->try_emplace(Key(key), Count{}).first;
    found.value() += amount;
  }

  std::vector<Entry> strongest() const {
    const auto best = std::ranges::max_element(entries(), {}, &Entry::second);
    return best == end() ? std::vector<Entry>{} : std::vector<Entry>{*best};
  }

  std::vector<Entry> few_;
  // Holds all entries once there are more than a few. Apart, so that maps of counters move little.
  std::unique_ptr<Many> many_;
};

}  // namespace kestrix
