#pragma once

#include <cstddef>

namespace kestrix::index {

/// The bytes that this program has allocated with new so far, whether or not they are freed.
std::size_t allocated_bytes();

}  // namespace kestrix::index
