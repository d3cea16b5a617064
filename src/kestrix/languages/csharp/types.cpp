#include "kestrix/languages/csharp/types.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "kestrix/languages/csharp/resolver.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostCandidates = 256;

std::string_view without_last_part(std::string_view space) {
  const std::size_t dot = space.rfind('.');
  return dot == space.npos ? std::string_view() : space.substr(0, dot);
}

}  // namespace

void DotnetTypes::declare(std::string_view space, std::string_view name, FileId file,
                          bool partial) {
  Declared& declared = declared_[space][name];
  declared.partial = declared.partial && partial;
  if (declared.files.empty() || declared.files.back() != file) declared.files.push_back(file);
  while (!space.empty() && spaces_.insert(space).second) {
    space = without_last_part(space);
  }
}

std::string_view DotnetTypes::space(std::string_view name) const {
  const auto found = spaces_.find(name);
  return found == spaces_.end() ? std::string_view() : *found;
}

std::size_t DotnetTypes::nearness(FileId file, FileId from) const {
  const std::string_view a = folder_of(files_.path(file));
  const std::string_view b = folder_of(files_.path(from));
  return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

DotnetTypes::Found DotnetTypes::find(std::string_view space, std::string_view name,
                                     FileId from) const {
  const auto names = declared_.find(space);
  if (names == declared_.end()) return {};
  const auto entry = names->second.find(name);
  if (entry == names->second.end()) return {};
  const std::vector<FileId>& all = entry->second.files;
  // Paths are sorted, so the nearest stand around the place of `from`.
  const auto place = static_cast<std::size_t>(std::ranges::lower_bound(all, from) - all.begin());
  const std::size_t first = place - std::min(place, kMostCandidates / 2);
  const std::size_t last = std::min(all.size(), first + kMostCandidates);

  const auto own = projects_.project_of(from);
  std::vector<FileId> found;
  for (std::size_t at = first; at < last; ++at) {
    if (projects_.sees(own, projects_.project_of(all[at]))) found.push_back(all[at]);
  }
  const auto is_own = [&](FileId file) { return projects_.project_of(file) == own; };
  if (std::ranges::any_of(found, is_own)) std::erase_if(found, std::not_fn(is_own));
  if (found.size() > 1 && !(entry->second.partial && own != DotnetProjects::kLoose)) {
    std::size_t best = 0;
    for (const FileId file : found) best = std::max(best, nearness(file, from));
    std::erase_if(found, [&](FileId file) { return nearness(file, from) < best; });
  }
  if (found.size() > kMostFound) keep_main_part(found, name);
  return {std::move(found), entry->first, entry->second.partial};
}

std::optional<FileId> DotnetTypes::main_of(const Found& found) const {
  if (found.files.empty() || (found.files.size() > 1 && !found.partial)) return std::nullopt;
  const auto named = std::ranges::find_if(
      found.files, [&](FileId file) { return is_named_after(file, found.name); });
  return named == found.files.end() ? found.files.front() : *named;
}

bool DotnetTypes::is_named_after(FileId file, std::string_view name) const {
  const std::string_view base = base_name(files_.path(file));
  return base.substr(0, base.rfind('.')) == name.substr(0, name.find(kArityMark));
}

// Of very many parts the one that is named after the type stands for all.
void DotnetTypes::keep_main_part(std::vector<FileId>& parts, std::string_view name) const {
  const auto is_main = [&](FileId file) { return is_named_after(file, name); };
  if (std::ranges::count_if(parts, is_main) == 1) std::erase_if(parts, std::not_fn(is_main));
  parts.resize(std::min(parts.size(), kMostFound));
}

}  // namespace kestrix::index
