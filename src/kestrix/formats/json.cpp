#include "kestrix/formats/json.h"

#include "kestrix/formats/json_text.h"

namespace kestrix::index {
namespace {

// A look for a key goes through all of its object's. No project file comes near.
constexpr std::size_t kMostKeys = 4096;

}  // namespace

Json parse_json(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  Json value = Json::parse(plain_json(text, kMostKeys), nullptr, /*allow_exceptions=*/false);
  return value.is_discarded() ? Json() : value;
}

Json parse_config(std::string_view text) {
  Json value = parse_json(text);
  return value.is_object() ? value : Json::object();
}

const Json* find_key(const Json& object, std::string_view key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(std::string(key));
  return found == object.end() ? nullptr : &*found;
}

std::string text_at(const Json& object, const char* key) {
  const Json* value = find_key(object, key);
  return value != nullptr && value->is_string() ? value->get<std::string>() : std::string();
}

std::vector<std::string> texts_of(const Json& value) {
  std::vector<std::string> texts;
  if (value.is_string()) texts.push_back(value.get<std::string>());
  if (!value.is_array()) return texts;
  for (const Json& element : value) {
    if (element.is_string()) texts.push_back(element.get<std::string>());
  }
  return texts;
}

}  // namespace kestrix::index
