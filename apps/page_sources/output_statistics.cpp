#include <fmt/format.h>

#include "apps/page_sources/output.h"
#include "apps/page_sources/table.h"
#include "capi/answers/escape.h"

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

std::string refresh_as_text(const index::RefreshResult& refresh) {
  const std::string rebuilt =
      refresh.rebuilt.empty() ? "" : fmt::format(" (all read anew: {})", refresh.rebuilt);
  return fmt::format("{} files added, {} changed, {} removed, {} unchanged{}", refresh.added,
                     refresh.changed, refresh.removed, refresh.unchanged, rebuilt);
}

}  // namespace kestrix::program
