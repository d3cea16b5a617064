#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// By name, role and holder.
void order_mentions(std::vector<Mention>& mentions);

/// Collects the mentions of one file, each combination of name, role and holder once.
class Mentions {
 public:
  explicit Mentions(std::size_t most) : most_(most) {}

  void add(std::string_view name, Role role, std::uint32_t within, std::uint32_t line) {
    const std::uint64_t hash =
        seeded_hash(name, (std::uint64_t{within} << 8U) | static_cast<std::uint64_t>(role));
    const auto [first, last] = places_.equal_range(hash);
    for (auto found = first; found != last; ++found) {
      Mention& known = mentions_[found->second];
      if (known.role != role || known.within != within || known.name != name) continue;
      ++known.count;
      return;
    }
    if (mentions_.size() >= most_) {
      ++dropped_;
      return;
    }
    places_.emplace(hash, static_cast<std::uint32_t>(mentions_.size()));
    mentions_.push_back({std::string(name), role, within, line, 1});
  }

  /// In the order of name, role and holder.
  std::vector<Mention> take();
  std::uint32_t dropped() const { return dropped_; }

 private:
  struct Identity {
    std::size_t operator()(std::uint64_t hash) const { return hash; }
  };

  std::size_t most_;
  std::vector<Mention> mentions_;
  std::unordered_multimap<std::uint64_t, std::uint32_t, Identity> places_;
  std::uint32_t dropped_ = 0;
};

}  // namespace kestrix::index
