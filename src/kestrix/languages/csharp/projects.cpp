#include "kestrix/languages/csharp/projects.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>
#include <utility>

#include "kestrix/languages/csharp/project_file.h"
#include "kestrix/languages/csharp/resolver.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::string_view kProjectFile = ".csproj";
constexpr std::array<std::string_view, 2> kSharedFiles = {"Directory.Build.props",
                                                          "Directory.Build.targets"};
constexpr std::size_t kMostSteps = 20'000'000;  // from project to project, for all together

std::string_view stem(std::string_view path) {
  const std::string_view name = base_name(path);
  return name.substr(0, name.rfind('.'));
}

std::optional<GlobalUsing> global_of(const ImportFact& import) {
  const auto form = static_cast<CSharpImport>(import.form);
  GlobalUsing directive{
      .name = import.module, .type = form == CSharpImport::kGlobalStatic, .alias = {}};
  if (form == CSharpImport::kGlobalAlias && !import.names.empty()) {
    directive.alias = import.names.front().name;
    return directive;
  }
  const bool global = form == CSharpImport::kGlobalNamespace || directive.type;
  return global ? std::optional(std::move(directive)) : std::nullopt;
}

}  // namespace

DotnetProjects::DotnetProjects(const FileTable& files)
    : files_(files), projects_(1), projects_of_files_(files.size(), kLoose) {
  for (FileId id = 0; id < files.size(); ++id) {
    const std::string_view path = files.path(id);
    if (!path.ends_with(kProjectFile)) continue;
    const auto project = static_cast<Id>(projects_.size());
    if (by_folder_.emplace(folder_of(path), project).second) {
      projects_.push_back({.folder = folder_of(path), .referred = {}, .usings = {}});
    }
    const auto [named, fresh] = by_name_.emplace(stem(path), by_folder_[folder_of(path)]);
    if (!fresh) named->second = kLoose;
  }
  for (FileId id = 0; id < files.size(); ++id) {
    projects_of_files_[id] = containing(files.path(id));
  }
  read_project_files();
  add_usings_of_sources();
  follow_references();
}

DotnetProjects::Id DotnetProjects::containing(std::string_view path) const {
  for (std::string_view folder = folder_of(path);; folder = folder_of(folder)) {
    const auto found = by_folder_.find(folder);
    if (found != by_folder_.end()) return found->second;
    if (folder.empty()) return kLoose;
  }
}

// Files that are shared are read once, however many projects they stand above.
void DotnetProjects::read_project_files() {
  std::unordered_map<std::string_view, std::vector<DotnetItem>, SeededHash> shared;
  for (FileId id = 0; id < files_.size(); ++id) {
    const std::string_view path = files_.path(id);
    if (std::ranges::find(kSharedFiles, base_name(path)) == kSharedFiles.end()) continue;
    auto& items = shared[folder_of(path)];
    for (DotnetItem& item : read_project_file(files_.read(id)).items)
      items.push_back(std::move(item));
  }
  for (FileId id = 0; id < files_.size(); ++id) {
    const std::string_view path = files_.path(id);
    if (!path.ends_with(kProjectFile)) continue;
    Project& project = projects_[by_folder_[folder_of(path)]];
    const ProjectFile own = read_project_file(files_.read(id));
    take(project, project.folder, own.items);
    for_each_folder_up(project.folder, [&](std::string_view folder) {
      const auto found = shared.find(folder);
      if (found != shared.end()) take(project, folder, found->second);
    });
    project.open = project.referred.empty() && own.imports;
  }
}

void DotnetProjects::take(Project& project, std::string_view folder,
                          std::span<const DotnetItem> items) {
  for (const DotnetItem& item : items) {
    if (item.kind == "Using") {
      if (project.usings.size() >= kMostUsings) continue;
      project.usings.push_back({.name = item.include, .type = item.is_static, .alias = item.alias});
    } else if (const Id other = referred_by(item.kind, item.include, folder); other > 0) {
      project.referred.push_back(other);
    }
  }
}

// The project that an item of a project file leads to; kLoose for none.
DotnetProjects::Id DotnetProjects::referred_by(std::string_view kind, std::string_view value,
                                               std::string_view folder) const {
  std::string path(value);
  std::ranges::replace(path, '\\', '/');
  const bool is_path = kind == "ProjectReference" || kind == "Compile";
  const auto whole = is_path ? join_normal(folder, path) : std::nullopt;
  if (kind == "Compile") return whole && path.starts_with("../") ? containing(*whole) : kLoose;
  if (whole && files_.find(*whole)) return containing(*whole);
  const std::string_view name =
      is_path ? stem(path) : std::string_view(path).substr(0, path.find(','));
  const auto named = by_name_.find(name);
  return named == by_name_.end() ? kLoose : named->second;
}

void DotnetProjects::add_usings_of_sources() {
  for (FileId id = 0; id < files_.size(); ++id) {
    if (files_.language(id) != "csharp") continue;
    auto& usings = projects_[project_of(id)].usings;
    for (const ImportFact& import : files_.facts(id).imports) {
      if (usings.size() >= kMostUsings) break;
      if (auto directive = global_of(import)) usings.push_back(std::move(*directive));
    }
  }
}

void DotnetProjects::follow_references() {
  std::vector<std::vector<Id>> all(projects_.size());
  std::size_t steps = 0;
  for (Id id = 1; id < projects_.size(); ++id) {
    std::unordered_set<Id> seen = {id};
    std::vector<Id> found = {id};
    for (std::size_t at = 0; at < found.size() && steps < kMostSteps; ++at) {
      steps += projects_[found[at]].referred.size() + 1;
      for (const Id next : projects_[found[at]].referred) {
        if (seen.insert(next).second) found.push_back(next);
      }
    }
    projects_[id].open |= steps >= kMostSteps;
    std::ranges::sort(found);
    all[id] = std::move(found);
  }
  for (Id id = 1; id < projects_.size(); ++id) projects_[id].referred = std::move(all[id]);
}

bool DotnetProjects::sees(Id from, Id to) const {
  if (from == to || from == kLoose || to == kLoose || projects_[from].open) return true;
  return std::ranges::binary_search(projects_[from].referred, to);
}

}  // namespace kestrix::index
