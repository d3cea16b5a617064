#pragma once

#include <cstdint>
#include <string_view>

namespace kestrix::index {

/// A 64-bit hash (MurmurHash64A) of a file's bytes, the same on every machine. It tells whether a
/// file that was touched also changed; nothing that must withstand a forger relies on it.
std::uint64_t content_hash(std::string_view bytes);

}  // namespace kestrix::index
