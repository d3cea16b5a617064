#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace kestrix::program {

/// Where and how `value` breaks a JSON Schema of the few keywords that ours are written in; a
/// keyword that is not among them is a fault, too.
std::vector<std::string> schema_faults(const nlohmann::json& schema, const nlohmann::json& value);

}  // namespace kestrix::program
