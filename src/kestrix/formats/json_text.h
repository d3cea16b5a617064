#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrix::index {

/// JSON as configuration files hold it, without its comments and trailing commas; what is left
/// stands in the same lines. "", which is no JSON, when more than `most_keys` stand in an object or
/// the text holds more values or is nested deeper than is read.
std::string plain_json(std::string_view text, std::size_t most_keys);

}  // namespace kestrix::index
