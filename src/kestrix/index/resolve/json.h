#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace kestrix::index {

/// Keeps the order of an object's keys.
using Json = nlohmann::ordered_json;

/// Parses JSON as configuration files hold it: with comments, trailing commas and a byte-order
/// mark. An empty object when it is malformed or no object, or far larger than configuration is: in
/// keys, values or depth.
Json parse_config(std::string_view text);

/// The text under a key; "" when there is none or it is no text.
std::string text_at(const Json& object, const char* key);

/// What stands under a key of an object; null when nothing does.
const Json* find_key(const Json& object, std::string_view key);

/// The texts in `value`: itself, or the elements of the array that it is.
std::vector<std::string> texts_of(const Json& value);

}  // namespace kestrix::index
