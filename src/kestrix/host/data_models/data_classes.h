#pragma once

#include <string_view>

#include "kestrix/host/data_models/data_signals.h"

namespace kestrix {

class DataLanguage;

/// The language that tells how to read a file's data definitions, by its extension; null for names
/// that can hold none.
const DataLanguage* data_language_of(std::string_view path);

/// Counts the definitions in `text`: DDL in every language, and the data classes, mapped classes or
/// schema definitions of `language`. The origin is left at its default.
DataSignals count_definitions(const DataLanguage& language, std::string_view text);

}  // namespace kestrix
