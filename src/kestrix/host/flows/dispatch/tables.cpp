#include "kestrix/host/flows/dispatch/tables.h"

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

constexpr Signal kTable{"table_of_entry_points", 3.0, "names {} entry point by its path or name",
                        "names {} entry points by their paths or names", "umami, lobsters"};
// Manifests are short; what is longer is data.
constexpr std::size_t kMostTableChars = 100'000;
constexpr std::size_t kMostTables = 32;
constexpr std::size_t kShortestName = 6;
// Of the files beside the entry points it names at least half as large a share.
constexpr std::size_t kListsAll = 2;
// By convention what sets a product up lies there.
constexpr std::string_view kSetUp = "config";

bool is_word(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

// What a text without code hardly says by chance: of several words.
bool is_distinct(std::string_view name) {
  const auto is_upper = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto inner = name.substr(std::min<std::size_t>(1, name.size()));
  return name.size() >= kShortestName &&
         (std::ranges::any_of(inner, is_upper) || inner.find('_') != std::string_view::npos);
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

std::string_view extension_of(std::string_view path) {
  const auto dot = path.rfind('.');
  return dot == std::string_view::npos || dot < path.rfind('/') + 1 ? "" : path.substr(dot + 1);
}

// A file's folder and its own name, and the types and functions that it declares.
void add_names_of(const CodeEvidence& evidence, FileId file, Named& names) {
  const std::string_view path = evidence.path(file);
  const std::string_view folder = directory_of(path);
  const std::string_view stem = word_at(path, path.rfind('/') + 1);
  if (!folder.empty()) names.emplace(Pair{folder.substr(folder.rfind('/') + 1), stem}, file);
  for (const auto& declared : evidence.index().declarations(file)) {
    const bool callable = declared.kind == index::DeclarationKind::kFunction;
    if (declared.container > 0 || !declared.exported) continue;
    if (!callable && !index::is_type(declared.kind)) continue;
    if (is_distinct(declared.name)) names.emplace(Pair{{}, declared.name}, file);
  }
}

Named names_of(const CodeEvidence& evidence, const std::vector<FileId>& files) {
  Named names;
  for (const FileId file : files) add_names_of(evidence, file, names);
  return names;
}

// Beside a list, names alone tell files apart.
Named names_beside(const CodeEvidence& evidence, const std::vector<FileId>& files,
                   std::string_view folder) {
  Named names;
  for (const FileId file : files) {
    const std::string_view path = evidence.path(file);
    if (directory_of(path) != folder) continue;
    names.emplace(Pair{word_at(path, path.rfind('/') + 1), extension_of(path)}, file);
  }
  return names;
}

std::set<FileId> named_in(std::string_view text, const Named& names, const Named& beside) {
  std::set<FileId> found;
  const auto look_for = [&](const Named& in, const Pair& pair) {
    const auto known = in.find(pair);
    if (known != in.end()) found.insert(known->second);
  };
  std::string_view before;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view word = word_at(text, at);
    if (word.empty()) {
      const bool joined = joins_words(text[at]) && at > 0 && is_word(text[at - 1]);
      if (!joined) before = {};
      ++at;
      continue;
    }
    look_for(names, {before, word});
    look_for(names, {{}, word});
    look_for(beside, {before, word});
    before = word;
    at += word.size();
  }
  return found;
}

void add_tables_in(const CodeEvidence& evidence, std::string_view folder,
                   std::vector<FileId>& tables) {
  const auto files = evidence.index().files();
  for (const FileId file : files_in(evidence, folder)) {
    const std::string_view name = files[file].path.substr(files[file].path.rfind('/') + 1);
    if (name.starts_with('.') || name.ends_with(".ignore")) continue;  // of a tool
    const bool data = files[file].language.empty() && !files[file].document;
    if (data && !files[file].generated && tables.size() < kMostTables) tables.push_back(file);
  }
}

std::vector<FileId> tables_above(const CodeEvidence& evidence, const std::vector<FileId>& roots) {
  std::vector<FileId> tables;
  for (std::string_view folder = common_folder(evidence, roots);; folder = directory_of(folder)) {
    add_tables_in(evidence, folder, tables);
    const std::string above(folder);
    add_tables_in(evidence,
                  folder.empty() ? std::string(kSetUp) : above + '/' + std::string(kSetUp), tables);
    if (folder.empty()) return tables;
  }
}

// The files beside the entry points that are none.
std::vector<FileId> others_beside(const CodeEvidence& evidence, const std::vector<FileId>& roots) {
  std::set<std::string_view> folders;
  for (const FileId root : roots) folders.insert(directory_of(evidence.path(root)));
  std::vector<FileId> others;
  for (const std::string_view folder : folders) {
    for (const FileId file : files_in(evidence, folder)) {
      const bool code = !evidence.index().files()[file].language.empty();
      if (code && !std::ranges::binary_search(roots, file)) others.push_back(file);
    }
  }
  return others;
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

void add_tables(Dispatch& dispatch, TableTexts& texts) {
  const CodeEvidence& evidence = dispatch.evidence;
  const std::vector<FileId>& roots = dispatch.roots.files();
  const std::vector<FileId> others = others_beside(evidence, roots);
  const Named names = names_of(evidence, roots);
  const Named other_names = names_of(evidence, others);
  for (const FileId table : tables_above(evidence, roots)) {
    const std::string& text = texts.of(evidence, table);
    const std::string_view folder = directory_of(evidence.path(table));
    const auto found = named_in(text, names, names_beside(evidence, roots, folder));
    // One of many may be an example; of few it is the way in.
    if (found.size() < 2 && found.size() * 2 < roots.size()) continue;
    // A list of all there is leads to none.
    const auto too = named_in(text, other_names, names_beside(evidence, others, folder));
    if (kListsAll * too.size() * roots.size() > found.size() * others.size()) continue;
    std::vector<Place> at;
    for (const FileId root : found) at.push_back({std::string(evidence.path(root)), 0, {}});
    dispatch.sheet.add(table, kTable, found.size(), std::move(at));
    dispatch.lead(table, found);
  }
}

}  // namespace kestrix
