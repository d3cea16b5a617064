#include <fmt/format.h>

#include <iterator>
#include <map>
#include <set>

#include "apps/page_sources/output.h"
#include "capi/answers/escape.h"

namespace kestrix::program {
namespace {

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

std::string symbols_as_tsv(std::span<const FoundSymbol> symbols) {
  std::string out;
  for (const FoundSymbol& symbol : symbols) {
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\t{}\n", c_quoted(symbol.path),
                   to_string(symbol.kind), c_quoted(symbol.name), c_quoted(symbol.signature));
  }
  return out;
}

std::string references_as_tsv(std::span<const FoundReference> references) {
  std::string out;
  for (const FoundReference& row : references) {
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\t{}\t{}\t{}\n", c_quoted(row.source),
                   row.line, to_string(row.role), c_quoted(row.target), c_quoted(row.name),
                   row.count);
  }
  return out;
}

}  // namespace kestrix::program
