#pragma once

#include <cstdint>
#include <string_view>

namespace kestrix {

/// A hash of bytes under a key that differs from process to process (SipHash-1-3), so that no
/// repository can choose names that all fall together in a table.
std::uint64_t string_hash(std::string_view bytes);

}  // namespace kestrix
