#pragma once

#include <array>
#include <string_view>

#include "kestrix/host/data_models/data_signals.h"

namespace kestrix {

/// Every origin, the nearest first.
inline constexpr std::array kDataOrigins{DataOrigin::kProduct, DataOrigin::kAside,
                                         DataOrigin::kMigration, DataOrigin::kGenerated,
                                         DataOrigin::kVendored};

/// What a path alone says of a file's origin; its text may say that it comes from farther away.
DataOrigin origin_of_path(std::string_view path);

/// Where a file comes from, judged by its folders, its name, and the header that generators write.
/// A dump of the current schema that a framework keeps up to date ("schema.rb") is the product's.
DataOrigin origin_of(std::string_view path, std::string_view text);

}  // namespace kestrix
