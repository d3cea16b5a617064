#include <fmt/format.h>

#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "apps/page_sources/document.h"
#include "apps/page_sources/escape.h"
#include "apps/page_sources/output.h"

namespace kestrix::program {
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

// The files of the edges, by folder.
std::map<std::string_view, std::set<std::string_view>> by_folder(std::span<const FoundEdge> edges) {
  std::map<std::string_view, std::set<std::string_view>> folders;
  for (const FoundEdge& edge : edges) {
    for (const std::string_view path :
         {std::string_view(edge.source), std::string_view(edge.target)}) {
      folders[folder_of(path, 0)].insert(path);
    }
  }
  return folders;
}

void append_boxes(std::string& out, std::span<const FoundEdge> edges) {
  std::size_t number = 0;
  for (const auto& [folder, paths] : by_folder(edges)) {
    fmt::format_to(std::back_inserter(out), "  subgraph cluster_{} {{\n    label={};\n", number++,
                   dot_string(folder));
    for (const std::string_view path : paths) {
      fmt::format_to(std::back_inserter(out), "    {} [label={}];\n", dot_string(path),
                     dot_string(path.substr(path.rfind('/') + 1)));
    }
    out += "  }\n";
  }
}

}  // namespace

std::string edges_as_tsv(std::span<const FoundEdge> edges) {
  std::string out;
  for (const FoundEdge& edge : edges) {
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\n", c_quoted(edge.source),
                   c_quoted(edge.target), edge.weight);
  }
  return out;
}

std::string edges_as_json(const About& about, std::span<const FoundEdge> edges) {
  return list_document(about, "edges", edges, edge_as_json);
}

std::string edges_as_dot(std::span<const FoundEdge> edges, bool folders) {
  std::string out = "digraph edges {\n  rankdir=LR;\n  node [shape=box];\n";
  if (!folders) append_boxes(out, edges);
  for (const FoundEdge& edge : edges) {
    const std::string label = folders ? fmt::format(", label={}", edge.weight) : "";
    fmt::format_to(std::back_inserter(out), "  {} -> {} [weight={}{}];\n", dot_string(edge.source),
                   dot_string(edge.target), edge.weight, label);
  }
  return out += "}\n";
}

std::string left_out_as_tsv(std::span<const index::LeftOut> left_out) {
  std::string out;
  for (const auto& [path, reason] : left_out) {
    out += fmt::format("{}\t{}\n", c_quoted(path), reason);
  }
  return out;
}

std::string left_out_as_json(const About& about, std::span<const index::LeftOut> left_out) {
  return list_document(about, "paths", left_out, [](const index::LeftOut& left) {
    return fmt::format(R"({{"path": {}, "reason": {}}})", json_string(left.path),
                       json_string(left.reason));
  });
}

std::string symbols_as_tsv(std::span<const FoundSymbol> symbols) {
  std::string out;
  for (const FoundSymbol& symbol : symbols) {
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\t{}\n", c_quoted(symbol.path),
                   to_string(symbol.kind), c_quoted(symbol.name), c_quoted(symbol.signature));
  }
  return out;
}

std::string symbols_as_json(const About& about, std::span<const FoundSymbol> symbols) {
  return list_document(about, "symbols", symbols, symbol_as_json);
}

}  // namespace kestrix::program
