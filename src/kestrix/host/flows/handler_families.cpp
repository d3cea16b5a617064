#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/flows/families.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;
using index::FrameworkName;
using index::Known;

// A name that one in so many has stands for a class of its own.
constexpr std::size_t kNameShare = 4;

// What several others are made from is called through them.
bool is_base(const CodeEvidence& evidence, FileId file) {
  const auto declarations = evidence.index().declarations(file);
  std::set<FileId> derived;
  std::size_t types = 0;
  std::size_t bases = 0;
  for (std::uint32_t place = 0; place < declarations.size(); ++place) {
    if (!is_type(declarations[place].kind)) continue;
    const std::size_t before = derived.size();
    for (const auto subtype : evidence.subtypes({file, place})) {
      if (subtype.file != file) derived.insert(subtype.file);
    }
    ++types;
    bases += derived.size() > before ? 1U : 0U;
  }
  return derived.size() > 1 && bases * 2 >= types;
}

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
    if (part.files.size() < kLeastFamily) continue;
    std::ranges::sort(part.files);
    Family family{.glob = patterns.glob_of(part.files), .sign = sign_of(*part.row, part.told)};
    family.score = kHandlerWeight * std::log2(1.0 + static_cast<double>(part.files.size()));
    family.files = std::move(part.files);
    families.push_back(std::move(family));
  }
  return families;
}

}  // namespace kestrix
