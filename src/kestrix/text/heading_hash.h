#pragma once

#include <cstdint>
#include <string_view>

#include "kestrix/text/ascii.h"

namespace kestrix {

/// What is kept of a heading's text: equal for equal texts, whatever their case.
constexpr std::uint32_t heading_hash(std::string_view text) {
  std::uint32_t hash = 2166136261U;
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(ascii::lower(c))) * 16777619U;
  }
  return hash;
}

}  // namespace kestrix
