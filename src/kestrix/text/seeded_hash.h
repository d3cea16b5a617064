#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrix {

/// A hash of bytes that differs from process to process, so that no repository can choose names
/// that all collide. For tables in memory only: nothing that is stored or ordered may depend on it.
std::uint64_t seeded_hash(std::string_view bytes, std::uint64_t more = 0);

/// For unordered containers that are keyed by texts of a repository.
struct SeededHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return seeded_hash(text); }
};

}  // namespace kestrix
