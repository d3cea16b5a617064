#pragma once

#include <string>
#include <string_view>

#include "kestrix/facts/data_signals.h"

namespace kestrix::index {

/// What a text defines, as compact bytes; "" when it defines nothing.
std::string encode_signals(const DataSignals& signals);

/// The inverse. Throws `CorruptIndex` when `bytes` are no encoded signals.
DataSignals decode_signals(std::string_view bytes);

}  // namespace kestrix::index
