#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace kestrix::index {

/// Keeps the order of an object's keys.
using Json = nlohmann::ordered_json;

/// Parses JSON as configuration files hold it: with comments, trailing commas and a byte-order
/// mark. Null when it is malformed, or far larger than such files are: in keys, values or depth.
Json parse_json(std::string_view text);

/// The same for a file that holds an object; an empty one when it does not.
Json parse_config(std::string_view text);

/// The text under a key; "" when there is none or it is no text.
std::string text_at(const Json& object, const char* key);

/// What stands under a key of an object; null when nothing does.
const Json* find_key(const Json& object, std::string_view key);

/// The texts in `value`: itself, or the elements of the array that it is.
std::vector<std::string> texts_of(const Json& value);

}  // namespace kestrix::index
