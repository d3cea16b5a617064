#pragma once

#include <tsl/ordered_map.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "kestrix/utils/string_hash.h"

namespace kestrix {

/// Hashes every kind of string alike, so that a map keyed by `std::string` can be searched with a
/// `std::string_view`. The order of a table that is filled by it differs from run to run.
struct StringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return string_hash(text); }
};

template <class Key>
using KeyHash = std::conditional_t<std::is_convertible_v<const Key&, std::string_view>, StringHash,
                                   std::hash<Key>>;

/// A hash map that iterates in insertion order.
///
/// Overwriting a value keeps the entry's place. The entries lie in one vector: small maps stay
/// small, and inserting moves entries, so it invalidates references and iterators.
template <class Key, class Value, class Hash = KeyHash<Key>>
using OrderedMap =
    tsl::ordered_map<Key, Value, Hash, std::equal_to<>, std::allocator<std::pair<Key, Value>>,
                     std::vector<std::pair<Key, Value>>>;

}  // namespace kestrix
