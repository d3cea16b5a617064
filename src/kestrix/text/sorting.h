#pragma once

#include <algorithm>
#include <vector>

namespace kestrix {

/// Puts the values in ascending order, each of them once.
template <class Value>
void sort_distinct(std::vector<Value>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

}  // namespace kestrix
