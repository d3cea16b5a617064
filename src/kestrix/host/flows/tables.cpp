#include "kestrix/host/flows/tables.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kestrix/host/flows/folders.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr Signal kTable{"table_of_entry_points", 3.0, "names {} entry point by its path",
                        "names {} entry points by their paths", "umami, flask"};
// Manifests are short; what is longer is data.
constexpr std::size_t kMostTableChars = 100'000;
constexpr std::size_t kMostTables = 32;

bool is_word(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

bool joins_words(char c) { return c == '/' || c == '.' || c == '\\'; }

// Two words that a path or a dotted name joins.
using Pair = std::pair<std::string_view, std::string_view>;
struct PairHash {
  std::size_t operator()(const Pair& pair) const noexcept {
    const std::hash<std::string_view> hash;
    return hash(pair.first) ^ (hash(pair.second) * 0x9E3779B97F4A7C15U);
  }
};
using Named = std::unordered_map<Pair, FileId, PairHash>;

std::string_view word_at(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && is_word(text[end])) ++end;
  return text.substr(at, end - at);
}

// An entry point's folder and its own name.
Named names_of(const CodeEvidence& evidence, const std::vector<FileId>& roots) {
  Named names;
  for (const FileId root : roots) {
    const std::string_view path = evidence.path(root);
    const std::string_view folder = directory_of(path);
    if (folder.empty()) continue;
    const std::string_view last = folder.substr(folder.rfind('/') + 1);
    names.emplace(Pair{last, word_at(path, path.rfind('/') + 1)}, root);
  }
  return names;
}

std::set<FileId> named_in(std::string_view text, const Named& names) {
  std::set<FileId> found;
  std::string_view before;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view word = word_at(text, at);
    if (word.empty()) {
      const bool joined = joins_words(text[at]) && at > 0 && is_word(text[at - 1]);
      if (!joined) before = {};
      ++at;
      continue;
    }
    const auto known = before.empty() ? names.end() : names.find({before, word});
    if (known != names.end()) found.insert(known->second);
    before = word;
    at += word.size();
  }
  return found;
}

std::vector<FileId> tables_above(const CodeEvidence& evidence, const std::vector<FileId>& roots) {
  std::vector<FileId> tables;
  const auto files = evidence.index().files();
  for (std::string_view folder = common_folder(evidence, roots);; folder = directory_of(folder)) {
    for (const FileId file : files_in(evidence, folder)) {
      const std::string_view name = files[file].path.substr(files[file].path.rfind('/') + 1);
      if (name.starts_with('.')) continue;  // of a tool
      const bool data = files[file].language.empty() && !files[file].document;
      if (data && !files[file].generated && tables.size() < kMostTables) tables.push_back(file);
    }
    if (folder.empty()) return tables;
  }
}

}  // namespace

const std::string& TableTexts::of(const CodeEvidence& evidence, FileId file) {
  const auto [entry, fresh] = texts_.try_emplace(file);
  if (fresh) {
    const std::string path(evidence.path(file));
    entry->second = root_.text(path, {.max_chars = kMostTableChars}).str();
  }
  return entry->second;
}

void add_tables(ScoreSheet& sheet, const CodeEvidence& evidence, TableTexts& texts,
                const std::vector<FileId>& roots) {
  const Named names = names_of(evidence, roots);
  if (names.empty()) return;
  for (const FileId table : tables_above(evidence, roots)) {
    const auto found = named_in(texts.of(evidence, table), names);
    // One of many may be an example; of few it is the way in.
    if (found.size() < 2 && found.size() * 2 < roots.size()) continue;
    std::vector<Place> at;
    for (const FileId root : found) at.push_back({std::string(evidence.path(root)), 0, {}});
    sheet.add(table, kTable, found.size(), std::move(at));
  }
}

}  // namespace kestrix
