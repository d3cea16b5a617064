#pragma once

#include <string_view>
#include <vector>

#include "kestrix/store/store.h"

namespace kestrix::index {

/// The reasons for which a file of the index was not looked into, or not as a whole.
std::vector<std::string_view> reasons_of(const Traits& traits);

}  // namespace kestrix::index
