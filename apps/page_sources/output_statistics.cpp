#include <fmt/format.h>

#include <utility>

#include "apps/page_sources/document.h"
#include "apps/page_sources/escape.h"
#include "apps/page_sources/output.h"
#include "apps/page_sources/table.h"

namespace kestrix::program {
namespace {

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

void write_languages(JsonWriter& json, const index::Statistics& statistics) {
  json.key("languages");
  json.begin_object();
  for (const auto& [name, counts] : statistics.languages) {
    json.key(name);
    json.begin_object();
    write_number(json, "files", counts.files);
    write_number(json, "unresolved", counts.unresolved);
    json.end_object();
  }
  json.end_object();
}

void write_refresh(JsonWriter& json, const index::RefreshResult& refresh) {
  json.key("refresh");
  json.begin_object();
  write_number(json, "added", refresh.added);
  write_number(json, "changed", refresh.changed);
  write_number(json, "removed", refresh.removed);
  write_number(json, "unchanged", refresh.unchanged);
  if (!refresh.rebuilt.empty()) write_text(json, "rebuilt", refresh.rebuilt);
  json.end_object();
}

}  // namespace

std::string statistics_as_text(const About& about, std::string_view file,
                               const index::Statistics& statistics) {
  Table table;
  table.add("repository", c_quoted(about.repository));
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

std::string statistics_as_json(const About& about, const index::RefreshResult& refresh,
                               const index::Statistics& statistics) {
  JsonWriter json;
  begin_document(json, about);
  write_text(json, "index", refresh.file.native());
  write_refresh(json, refresh);
  write_number(json, "files", statistics.files);
  write_number(json, "sources", statistics.sources);
  write_number(json, "documents", statistics.documents);
  write_number(json, "generated", statistics.generated);
  write_number(json, "edges", statistics.edges);
  json.key("symbols");
  json.begin_object();
  for (const auto& [kind, count] : statistics.symbols) write_number(json, to_string(kind), count);
  json.end_object();
  write_languages(json, statistics);
  json.end_object();
  return std::move(json).take();
}

std::string refresh_as_text(const index::RefreshResult& refresh) {
  const std::string rebuilt =
      refresh.rebuilt.empty() ? "" : fmt::format(" (all read anew: {})", refresh.rebuilt);
  return fmt::format("{} files added, {} changed, {} removed, {} unchanged{}", refresh.added,
                     refresh.changed, refresh.removed, refresh.unchanged, rebuilt);
}

}  // namespace kestrix::program
