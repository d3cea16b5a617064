#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Names that functions bind, by how many of the functions around the place do.
class LocalNames {
 public:
  void enter(bool function) {
    bound_.emplace_back();
    if (function) ++functions_;
  }
  void leave(bool function) {
    if (function) --functions_;
    for (const std::string_view name : bound_.back()) {
      if (const auto found = counts_.find(name); --found->second == 0) counts_.erase(found);
    }
    bound_.pop_back();
  }
  bool in_function() const { return functions_ > 0; }
  void bind(std::string_view name) {
    if (in_function()) bind_here(name);
  }
  /// Also to a type that has parameters.
  void bind_here(std::string_view name) {
    if (bound_.empty() || name.empty()) return;
    bound_.back().push_back(name);
    ++counts_[name];
  }
  bool contains(std::string_view name) const { return !counts_.empty() && counts_.contains(name); }

 private:
  std::size_t functions_ = 0;
  std::vector<std::vector<std::string_view>> bound_;
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> counts_;
};

}  // namespace kestrix::index
