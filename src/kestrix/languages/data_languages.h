#pragma once

#include <string_view>

#include "kestrix/definitions/definition_scan.h"

namespace kestrix {

/// Finds the definitions of data in a file, by its name; null for names that can hold none: lock
/// files and a package manager's manifests have no data of the product. A language need not be one
/// that is parsed.
const DefinitionScan* definition_scan_of(std::string_view path);

}  // namespace kestrix
