#include <fmt/format.h>

#include <utility>

#include "capi/answers/document.h"
#include "capi/answers/escape.h"
#include "capi/answers/json.h"

namespace kestrix {
namespace {

// A document whose only further member is a list, one entry a line.
template <class Entry>
std::string list_document(const About& about, std::string_view key, std::span<const Entry> entries,
                          auto entry_as_json) {
  JsonWriter json;
  begin_document(json, about);
  json.key(key);
  json.begin_array();
  for (const Entry& entry : entries) json.raw(entry_as_json(entry));
  json.end_array();
  json.end_object();
  return std::move(json).take();
}

std::string edge_as_json(const FoundEdge& edge) {
  return fmt::format(R"({{"source": {}, "target": {}, "weight": {}, "edges": {}}})",
                     json_string(edge.source), json_string(edge.target), edge.weight, edge.edges);
}

std::string symbol_as_json(const FoundSymbol& symbol) {
  return fmt::format(R"({{"path": {}, "kind": "{}", "name": {}, "signature": {}, "line": {}}})",
                     json_string(symbol.path), to_string(symbol.kind), json_string(symbol.name),
                     json_string(symbol.signature), symbol.line);
}

std::string left_out_as_json_line(const index::LeftOut& left) {
  return fmt::format(R"({{"path": {}, "reason": {}}})", json_string(left.path),
                     json_string(left.reason));
}

std::string reference_as_json(const FoundReference& row) {
  return fmt::format(
      R"({{"source": {}, "line": {}, "role": "{}", "target": {}, "name": {}, "count": {}}})",
      json_string(row.source), row.line, to_string(row.role),
      row.target.empty() ? "null" : json_string(row.target), json_string(row.name), row.count);
}

}  // namespace

std::string edges_as_json(const About& about, std::span<const FoundEdge> edges) {
  return list_document(about, "edges", edges, edge_as_json);
}

std::string left_out_as_json(const About& about, std::span<const index::LeftOut> left_out) {
  return list_document(about, "paths", left_out, left_out_as_json_line);
}

std::string references_as_json(const About& about, std::span<const FoundReference> references) {
  return list_document(about, "references", references, reference_as_json);
}

std::string symbols_as_json(const About& about, std::span<const FoundSymbol> symbols) {
  return list_document(about, "symbols", symbols, symbol_as_json);
}

}  // namespace kestrix
