#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/flows/classes/families.h"
#include "kestrix/host/flows/classes/family_parts.h"
#include "kestrix/host/flows/classes/family_signs.h"
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

// What stands for many of the files: how the names of half of them end ("*Controller.java"), their
// name ("views.py"), or, where that many lie in folders of one name, both ("api/views.py"). "" for
// the others.
Named by_name(const CodeEvidence& evidence, const PathPatterns& patterns,
              const std::vector<FileId>& files) {
  const std::size_t many = std::max(kLeastFamily, files.size() / kNameShare);
  Named parts;
  std::vector<FileId> rest = files;
  const auto part_by = [&](std::size_t least, const auto& name_of) {
    Named named;
    for (const FileId file : rest) named[name_of(file)].push_back(file);
    rest.clear();
    for (auto& [name, part] : named) {
      auto& to = part.size() >= least && !name.empty() ? parts[name] : rest;
      std::ranges::move(part, std::back_inserter(to));
    }
    std::ranges::sort(rest);
  };
  part_by(std::max(many, files.size() / 2), [&](FileId file) { return patterns.ending(file); });
  part_by(many, [&](FileId file) { return last_folders(evidence.path(file), 1); });
  part_by(many, [&](FileId file) { return last_folders(evidence.path(file), 0); });
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
  // By place, too, where the same framework has one for them.
  std::map<std::pair<const FrameworkName*, const FrameworkName*>, std::vector<FileId>> by_row;
  for (const auto& [file, sign] : evidence.handlers) {
    if (!evidence.code.is_product(file) || is_base(evidence.code, file)) continue;
    const bool placed = sign.place != nullptr && sign.place->framework == sign.row->framework;
    by_row[{placed ? sign.place : nullptr, sign.row}].push_back(file);
  }
  Parts parts;
  for (const auto& [rows, files] : by_row) {
    const auto& [place, row] = rows;
    // A pattern of paths is a name already.
    for (auto& [name, part] :
         place != nullptr ? Named{{"", files}} : by_name(evidence.code, patterns, files)) {
      const std::string_view whole = place != nullptr ? place->name : row->name;
      const std::string own = name.empty() ? std::string(whole) : "/" + std::string(name);
      join(parts[{std::string(row->framework), own}], std::move(part), row);
    }
  }
  std::vector<Family> families;
  for (auto& [name, part] : parts) {
    if (part.files.empty()) continue;
    std::ranges::sort(part.files);
    for (std::vector<FileId>& area : areas_of(evidence.code, part.files)) {
      std::vector<FileId> files = where_they_act(evidence.code, evidence.graph, std::move(area));
      const bool told = part.row->known == Known::kHandlerBase && files.size() == kTwo;
      if (files.size() < kLeastFamily && !told) continue;
      Family family{.glob = patterns.glob_of(files),
                    .sign = sign_of(*part.row, std::min(part.told, files.size()))};
      family.score = kHandlerWeight * std::log2(1.0 + static_cast<double>(files.size()));
      family.files = std::move(files);
      family.by_mark = part.row->known == Known::kHandlerMarker;
      join_alike(families, std::move(family));
    }
  }
  return families;
}

}  // namespace kestrix
