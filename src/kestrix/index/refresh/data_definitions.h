#pragma once

#include <string_view>

#include "kestrix/facts/data_signals.h"

namespace kestrix::index {

/// What `text`, the content of `path`, defines, as the index keeps it. Linear in the text.
DataSignals data_definitions(std::string_view path, std::string_view text);

}  // namespace kestrix::index
