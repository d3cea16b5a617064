#pragma once

#include <array>
#include <string_view>

namespace kestrix {

/// Where a file's definitions come from, the nearest to the product first. Aside from it stand
/// samples, documentation, and what serves its developers: scripts, helpers of tests.
enum class DataOrigin { kProduct, kAside, kMigration, kGenerated, kVendored };

/// Every origin, the nearest first.
inline constexpr std::array kDataOrigins{DataOrigin::kProduct, DataOrigin::kAside,
                                         DataOrigin::kMigration, DataOrigin::kGenerated,
                                         DataOrigin::kVendored};

/// What a path alone says of a file's origin; its text may say that it comes from farther away.
DataOrigin origin_of_path(std::string_view path);

/// Where a file comes from, judged by its folders, its name, and whether its text is a program's
/// work. A dump of the current schema that a framework keeps up to date ("schema.rb") is the
/// product's.
DataOrigin origin_of(std::string_view path, bool made_by_program);

}  // namespace kestrix
