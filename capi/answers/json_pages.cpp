#include <utility>

#include "capi/answers/document.h"
#include "capi/answers/json.h"

namespace kestrix {
namespace {

void write_counts(JsonWriter& json, std::uint64_t total, bool truncated,
                  std::string_view nothing_found) {
  write_number(json, "total", total);
  json.key("truncated");
  json.boolean(truncated);
  if (!nothing_found.empty()) write_text(json, "nothing_found", nothing_found);
}

void write_answer(JsonWriter& json, const PageAnswer& answer) {
  if (answer.has_material) {
    json.key("has_material");
    json.boolean(*answer.has_material);
  }
  write_picks(json, "files", answer.files);
  write_picks(json, "further", answer.further);
  write_counts(json, answer.total, answer.truncated, answer.nothing_found);
}

void write_answer(JsonWriter& json, const FlowsAnswer& answer) {
  json.key("classes");
  json.begin_array();
  for (const FlowClass& flow : answer.classes) {
    json.begin_object();
    write_text(json, "entry_points", flow.entry_points);
    write_text(json, "sign", flow.sign);
    write_texts(json, "roots", flow.roots);
    write_picks(json, "files", flow.files);
    write_picks(json, "further", flow.further);
    json.end_object();
  }
  json.end_array();
  write_counts(json, answer.total, answer.truncated, answer.nothing_found);
}

}  // namespace

std::string pages_as_json(const About& about, std::span<const AnsweredPage> pages) {
  JsonWriter json;
  begin_document(json, about);
  json.key("pages");
  json.begin_object();
  for (const AnsweredPage& page : pages) {
    json.key(page.page->name);
    json.begin_object();
    std::visit([&](const auto& answer) { write_answer(json, answer); }, page.answer);
    json.end_object();
  }
  json.end_object();
  json.end_object();
  return std::move(json).take();
}

std::string why_as_json(const About& about, const WhyAnswer& answer) {
  JsonWriter json;
  begin_document(json, about);
  write_text(json, "page", answer.page);
  write_text(json, "path", answer.path);
  json.key("list");
  json.raw(answer.list.empty() ? "null" : json_string(answer.list));
  json.key("rank");
  json.raw(answer.list.empty() ? "null" : std::to_string(answer.rank));
  if (!answer.entry_points.empty()) write_text(json, "entry_points", answer.entry_points);
  write_reasons(json, answer.reasons);
  write_texts(json, "missing", answer.missing);
  write_picks(json, "above", answer.above);
  json.end_object();
  return std::move(json).take();
}

}  // namespace kestrix
