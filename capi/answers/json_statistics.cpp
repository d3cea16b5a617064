#include <utility>

#include "capi/answers/document.h"
#include "capi/answers/json.h"

namespace kestrix {
namespace {

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

}  // namespace kestrix
