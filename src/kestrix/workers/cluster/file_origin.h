#pragma once

#include <string_view>

#include "kestrix/workers/cluster/data_signals.h"

namespace kestrix {

/// Where a file comes from, judged by its folders, its name, and the header that generators write.
/// A dump of the current schema that a framework keeps up to date ("schema.rb") is the product's.
DataOrigin origin_of(std::string_view path, std::string_view text);

}  // namespace kestrix
