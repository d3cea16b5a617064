#pragma once

namespace kestrix::index {

/// The setting of a store that names the directory it is the index of.
inline constexpr const char* kRootSetting = "root";

}  // namespace kestrix::index
