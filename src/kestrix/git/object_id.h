#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kestrix::index {

/// The name of an object by SHA-1.
using ObjectId = std::array<std::uint8_t, 20>;

/// The id under which git keeps a file's content. That SHA-1 is broken is no harm here: it tells
/// whether a file was edited, not whether to trust it.
ObjectId blob_id(std::string_view content);

}  // namespace kestrix::index
