#pragma once

#include <cstddef>

namespace kestrix::index {

// What is read of a project file. A parsed value takes many times the bytes of its text, and the
// libraries call themselves for what is nested. No project file comes near.
inline constexpr std::size_t kMostValues = std::size_t{1} << 20;
inline constexpr std::size_t kDeepest = 200;

}  // namespace kestrix::index
