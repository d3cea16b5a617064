#include "apps/page_sources/cached.h"

#include <fmt/format.h>

#include <iterator>
#include <utility>

#include "capi/answers/document.h"
#include "capi/answers/escape.h"

namespace kestrix::program {
namespace {

constexpr auto kDay = std::chrono::hours(24);

std::string size_of(std::uint64_t bytes) {
  constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20U;
  return bytes < kMebibyte ? fmt::format("{} KiB", (bytes + 1023) / 1024)
                           : fmt::format("{} MiB", (bytes + kMebibyte - 1) / kMebibyte);
}

std::string repository_of(const index::CachedIndex& index) {
  if (index.root.empty()) return "(unreadable, or of another version)";
  return c_quoted(index.root) + (index.orphaned ? " (gone)" : "");
}

}  // namespace

std::vector<index::CachedIndex> remove_indexes(std::optional<unsigned> days) {
  std::vector<index::CachedIndex> removed;
  for (auto& index : index::list_cached_indexes()) {
    if (days && index.age < *days * kDay) continue;
    remove_cached_index(index);
    removed.push_back(std::move(index));
  }
  return removed;
}

std::string cache_as_text(std::span<const index::CachedIndex> indexes, bool removed) {
  std::string out;
  std::uint64_t bytes = 0;
  for (const auto& index : indexes) {
    bytes += index.size;
    fmt::format_to(std::back_inserter(out), "{:>8}  {:>4}  {}  {}\n", size_of(index.size),
                   fmt::format("{}d", index.age / kDay), repository_of(index),
                   c_quoted(index.file.native()));
  }
  fmt::format_to(std::back_inserter(out), "{} {}{}, {}\n", indexes.size(),
                 indexes.size() == 1 ? "index" : "indexes", removed ? " removed" : "",
                 size_of(bytes));
  return out;
}

std::string cache_as_json(std::span<const index::CachedIndex> indexes, bool removed) {
  JsonWriter json;
  begin_document(json);
  json.key(removed ? "removed" : "indexes");
  json.begin_array();
  for (const auto& index : indexes) {
    json.begin_object();
    write_text(json, "file", index.file.native());
    json.key("repository");
    json.raw(index.root.empty() ? "null" : json_string(index.root));
    json.key("gone");
    json.boolean(index.orphaned);
    write_number(json, "bytes", index.size);
    write_number(json, "age_days", static_cast<std::uint64_t>(index.age / kDay));
    json.end_object();
  }
  json.end_array();
  json.end_object();
  return std::move(json).take();
}

}  // namespace kestrix::program
