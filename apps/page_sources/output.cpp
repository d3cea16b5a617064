#include "apps/page_sources/output.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "apps/page_sources/escape.h"
#include "apps/page_sources/json_writer.h"

namespace kestrix::program {
namespace {

void append_heading(std::string& out, std::string_view name, std::size_t count, bool styled) {
  if (!out.empty()) out += '\n';
  const std::string_view bold = styled ? "\x1b[1m" : "";
  const std::string_view plain = styled ? "\x1b[0m" : "";
  fmt::format_to(std::back_inserter(out), "{}{}{} ({})\n", bold, name, plain, count);
}

void append_files(std::string& out, std::string_view indent, std::span<const std::string> files) {
  for (const std::string& file : files) out.append(indent).append(c_quoted(file)).append(1, '\n');
}

void append_class(std::string& out, const FlowClass& flow) {
  fmt::format_to(std::back_inserter(out), "  {} ({} entry points)\n", c_quoted(flow.entry_points),
                 flow.roots.size());
  append_files(out, "    ", flow.files);
}

void append_page(std::string& out, const PageAnswer& answer, bool styled) {
  const bool has_classes = answer.page == PageName::kFlows;
  append_heading(out, to_string(answer.page),
                 has_classes ? answer.classes.size() : answer.files.size(), styled);
  if (answer.has_material.value_or(false) && answer.files.empty()) {
    out += "  (only outside the production files)\n";
  }
  append_files(out, "  ", answer.files);
  for (const FlowClass& flow : answer.classes) append_class(out, flow);
}

void write_paths(JsonWriter& json, std::string_view key, std::span<const std::string> paths) {
  json.key(key);
  json.begin_array();
  for (const std::string& path : paths) json.string(path);
  json.end_array();
}

void write_class(JsonWriter& json, const FlowClass& flow) {
  json.begin_object();
  json.key("entry_points");
  json.string(flow.entry_points);
  write_paths(json, "roots", flow.roots);
  write_paths(json, "files", flow.files);
  json.end_object();
}

void write_page(JsonWriter& json, const PageAnswer& answer) {
  json.begin_object();
  if (answer.has_material) {
    json.key("has_material");
    json.boolean(*answer.has_material);
  }
  if (answer.page == PageName::kFlows) {
    json.key("classes");
    json.begin_array();
    for (const FlowClass& flow : answer.classes) write_class(json, flow);
    json.end_array();
  } else {
    write_paths(json, "files", answer.files);
  }
  json.end_object();
}

// Opens the document that all JSON answers share.
void begin_document(JsonWriter& json, std::string_view repository) {
  json.begin_object();
  json.key("schema");
  json.raw(std::to_string(kJsonSchema));
  json.key("repository");
  json.string(repository);
}

// A document whose only further member is a list, one entry a line.
template <class Entry>
std::string list_document(std::string_view repository, std::string_view key,
                          std::span<const Entry> entries, auto entry_as_json) {
  JsonWriter json;
  begin_document(json, repository);
  json.key(key);
  json.begin_array();
  for (const Entry& entry : entries) json.raw(entry_as_json(entry));
  json.end_array();
  json.end_object();
  return std::move(json).take();
}

std::string edge_as_json(const FileEdge& edge) {
  return fmt::format(R"({{"source": {}, "target": {}, "weight": {}}})", json_string(edge.source),
                     json_string(edge.target), edge.weight);
}

std::string symbol_as_json(const FoundSymbol& symbol) {
  return fmt::format(R"({{"path": {}, "kind": "{}", "name": {}, "signature": {}}})",
                     json_string(symbol.path), to_string(symbol.kind), json_string(symbol.name),
                     json_string(symbol.signature));
}

// Rows of a label and a text, the texts aligned.
class Table {
 public:
  explicit Table(std::string_view indent = "") : indent_(indent) {}

  void add(std::string_view label, std::string text) {
    width_ = std::max(width_, label.size());
    rows_.emplace_back(label, std::move(text));
  }

  std::string text() const {
    std::string out;
    for (const auto& [label, text] : rows_) {
      fmt::format_to(std::back_inserter(out), "{}{:<{}}  {}\n", indent_, label, width_, text);
    }
    return out;
  }

 private:
  std::string_view indent_;
  std::size_t width_ = 0;
  std::vector<std::pair<std::string, std::string>> rows_;
};

std::string languages_as_text(const index::Statistics& statistics) {
  Table table("  ");
  for (const auto& [name, counts] : statistics.languages) {
    table.add(name, fmt::format("{} files, {} imports that look local and lead nowhere",
                                counts.files, counts.unresolved));
  }
  return table.text();
}

std::string skipped_as_text(const index::Statistics& statistics) {
  Table table("  ");
  for (const auto& [reason, count] : statistics.skipped) table.add(reason, std::to_string(count));
  return table.text();
}

}  // namespace

std::string pages_as_text(std::span<const PageAnswer> pages, bool styled) {
  std::string out;
  for (const PageAnswer& answer : pages) append_page(out, answer, styled);
  return out;
}

std::string pages_as_json(std::string_view repository, std::span<const PageAnswer> pages) {
  JsonWriter json;
  begin_document(json, repository);
  json.key("pages");
  json.begin_object();
  for (const PageAnswer& answer : pages) {
    json.key(to_string(answer.page));
    write_page(json, answer);
  }
  json.end_object();
  json.end_object();
  return std::move(json).take();
}

std::string edges_as_tsv(std::span<const FileEdge> edges) {
  std::string out;
  for (const FileEdge& edge : edges) {
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\n", c_quoted(edge.source),
                   c_quoted(edge.target), edge.weight);
  }
  return out;
}

std::string edges_as_json(std::string_view repository, std::span<const FileEdge> edges) {
  return list_document(repository, "edges", edges, edge_as_json);
}

std::string edges_as_dot(std::span<const FileEdge> edges) {
  std::string out = "digraph edges {\n";
  for (const FileEdge& edge : edges) {
    fmt::format_to(std::back_inserter(out), "  {} -> {} [weight={}];\n", dot_string(edge.source),
                   dot_string(edge.target), edge.weight);
  }
  return out += "}\n";
}

std::string symbols_as_tsv(std::span<const FoundSymbol> symbols) {
  std::string out;
  for (const FoundSymbol& symbol : symbols) {
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\t{}\n", c_quoted(symbol.path),
                   to_string(symbol.kind), c_quoted(symbol.name), c_quoted(symbol.signature));
  }
  return out;
}

std::string symbols_as_json(std::string_view repository, std::span<const FoundSymbol> symbols) {
  return list_document(repository, "symbols", symbols, symbol_as_json);
}

std::string statistics_as_text(std::string_view repository, std::string_view file,
                               const index::Statistics& statistics) {
  Table table;
  table.add("repository", c_quoted(repository));
  table.add("index", c_quoted(file));
  table.add("files", std::to_string(statistics.files));
  table.add("  source", std::to_string(statistics.sources));
  table.add("  documents", std::to_string(statistics.documents));
  table.add("  generated", std::to_string(statistics.generated));
  table.add("edges", std::to_string(statistics.edges));
  for (const auto& [kind, count] : statistics.symbols) {
    table.add(to_string(kind), std::to_string(count));
  }
  std::string out = table.text();
  if (!statistics.languages.empty()) out += "languages\n" + languages_as_text(statistics);
  if (!statistics.skipped.empty()) out += "left out\n" + skipped_as_text(statistics);
  return out;
}

std::string refresh_as_text(const index::RefreshResult& refresh) {
  const std::string rebuilt =
      refresh.rebuilt.empty() ? "" : fmt::format(" (all read anew: {})", refresh.rebuilt);
  return fmt::format("{} files added, {} changed, {} removed, {} unchanged{}", refresh.added,
                     refresh.changed, refresh.removed, refresh.unchanged, rebuilt);
}

}  // namespace kestrix::program
