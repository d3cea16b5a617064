#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/flows/families.h"
#include "kestrix/host/flows/family_parts.h"
#include "kestrix/host/flows/family_signs.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/sorting.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;
using index::FrameworkName;
using index::Known;

// A name that one in so many has stands for a class of its own.
constexpr std::size_t kNameShare = 4;
constexpr std::size_t kTwo = 2;

std::string_view last_folders(std::string_view path, int count) {
  std::size_t at = path.size();
  for (; count >= 0; --count) {
    at = path.rfind('/', at - 1);
    if (at == std::string_view::npos || at == 0) return path;
  }
  return path.substr(at + 1);
}

using Named = std::map<std::string_view, std::vector<FileId>>;

// The end of a path that stands for many of the files: their name ("views.py"), or, where that many
// lie in folders of one name, both ("api/views.py"). "" for the others.
Named by_name(const CodeEvidence& evidence, const std::vector<FileId>& files) {
  const std::size_t many = std::max(kLeastFamily, files.size() / kNameShare);
  Named parts;
  std::vector<FileId> rest = files;
  for (const int folders : {1, 0}) {
    Named named;
    for (const FileId file : rest)
      named[last_folders(evidence.path(file), folders)].push_back(file);
    rest.clear();
    for (auto& [name, part] : named) {
      auto& to = part.size() >= many ? parts[name] : rest;
      std::ranges::move(part, std::back_inserter(to));
    }
    std::ranges::sort(rest);
  }
  parts.emplace("", std::move(rest));
  return parts;
}

std::string sign_of(const FrameworkName& row, std::size_t count) {
  const std::string files = counted(count, "file", "files");
  switch (row.known) {
    case Known::kHandlerBase:
      return fmt::format("{} extend {} ({})", files, row.name, row.framework);
    case Known::kHandlerMarker:
      return fmt::format("{} bear {} ({})", files, row.name, row.framework);
    default:
      return fmt::format("{} lie where {} looks for them: {}", files, row.framework, row.name);
  }
}

// The handlers of one framework that are one class.
struct Part {
  std::vector<FileId> files;
  const FrameworkName* row = nullptr;  // that tells the most of them
  std::size_t told = 0;
};

using Parts = std::map<std::pair<std::string, std::string>, Part>;

void join(Part& part, std::vector<FileId> files, const FrameworkName* row) {
  if (files.size() > part.told) {
    part.row = row;
    part.told = files.size();
  }
  std::ranges::move(files, std::back_inserter(part.files));
}

// What one pattern says is one class, however many signs its files bear.
void join_alike(std::vector<Family>& families, Family family) {
  const auto same = std::ranges::find(families, family.glob, &Family::glob);
  if (same == families.end()) {
    families.push_back(std::move(family));
    return;
  }
  if (family.files.size() > same->files.size()) same->sign = std::move(family.sign);
  std::ranges::move(family.files, std::back_inserter(same->files));
  sort_distinct(same->files);
  same->score = kHandlerWeight * std::log2(1.0 + static_cast<double>(same->files.size()));
}

}  // namespace

std::vector<Family> handler_families(const FlowEvidence& evidence, const PathPatterns& patterns) {
  std::map<const FrameworkName*, std::vector<FileId>> by_row;
  for (const auto& [file, sign] : evidence.handlers) {
    if (!evidence.code.is_product(file) || is_base(evidence.code, file)) continue;
    by_row[sign.row].push_back(file);
  }
  Parts parts;
  for (const auto& [row, files] : by_row) {
    // A pattern of paths is a name already.
    const bool placed = row->known == Known::kHandlerPath;
    for (auto& [name, part] : placed ? Named{{"", files}} : by_name(evidence.code, files)) {
      const std::string own = name.empty() ? std::string(row->name) : "/" + std::string(name);
      join(parts[{std::string(row->framework), own}], std::move(part), row);
    }
  }
  std::vector<Family> families;
  for (auto& [name, part] : parts) {
    if (part.files.empty()) continue;
    std::ranges::sort(part.files);
    for (std::vector<FileId>& files : areas_of(evidence.code, part.files)) {
      const bool told = part.row->known == Known::kHandlerBase && files.size() == kTwo;
      if (files.size() < kLeastFamily && !told) continue;
      Family family{.glob = patterns.glob_of(files),
                    .sign = sign_of(*part.row, std::min(part.told, files.size()))};
      family.score = kHandlerWeight * std::log2(1.0 + static_cast<double>(files.size()));
      family.files = std::move(files);
      family.by_type = part.row->known != Known::kHandlerPath;
      join_alike(families, std::move(family));
    }
  }
  return families;
}

}  // namespace kestrix
