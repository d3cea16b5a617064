#include "capi/answers/document.h"

#include <fmt/format.h>

#include <string>

#include "capi/answers/version.h"

namespace kestrix {
namespace {

std::string place_as_json(const Place& place) {
  std::string out = fmt::format(R"({{"path": {})", json_string(place.path));
  if (place.line > 0) out += fmt::format(R"(, "line": {})", place.line);
  if (!place.name.empty()) out += fmt::format(R"(, "name": {})", json_string(place.name));
  return out + '}';
}

}  // namespace

void write_number(JsonWriter& json, std::string_view key, std::uint64_t number) {
  json.key(key);
  json.raw(std::to_string(number));
}

void write_text(JsonWriter& json, std::string_view key, std::string_view text) {
  json.key(key);
  json.string(text);
}

void write_texts(JsonWriter& json, std::string_view key, std::span<const std::string> texts) {
  json.key(key);
  json.begin_array();
  for (const std::string& text : texts) json.string(text);
  json.end_array();
}

void begin_document(JsonWriter& json) {
  json.begin_object();
  json.key("schema");
  json.raw(std::to_string(kJsonSchema));
  json.key("program");
  json.begin_object();
  write_text(json, "name", "page-sources");
  write_text(json, "version", kVersion);
  json.end_object();
}

void begin_document(JsonWriter& json, const About& about) {
  begin_document(json);
  write_text(json, "repository", about.repository);
  json.key("revision");
  json.raw(about.revision ? json_string(*about.revision) : "null");
  json.key("clean");
  json.raw(about.clean ? (*about.clean ? "true" : "false") : "null");
  json.key("left_out");
  json.begin_object();
  for (const auto& [reason, count] : about.left_out) write_number(json, reason, count);
  json.end_object();
  write_texts(json, "warnings", about.warnings);
}

void write_reasons(JsonWriter& json, std::span<const Reason> reasons) {
  json.key("reasons");
  json.begin_array();
  for (const Reason& reason : reasons) {
    json.begin_object();
    write_text(json, "kind", reason.kind);
    write_text(json, "text", reason.text);
    write_number(json, "count", reason.count);
    json.key("at");
    json.begin_array();
    for (const Place& place : reason.at) json.raw(place_as_json(place));
    json.end_array();
    json.end_object();
  }
  json.end_array();
}

void write_picks(JsonWriter& json, std::string_view key, std::span<const Pick> picks) {
  json.key(key);
  json.begin_array();
  for (const Pick& pick : picks) {
    json.begin_object();
    write_text(json, "path", pick.path);
    write_reasons(json, pick.reasons);
    json.end_object();
  }
  json.end_array();
}

}  // namespace kestrix
