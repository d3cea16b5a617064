#include "kestrix/languages/ecmascript/packages.h"

#include <algorithm>
#include <array>

#include "kestrix/formats/json.h"
#include "kestrix/formats/scalars.h"
#include "kestrix/text/braces.h"
#include "kestrix/text/paths.h"

namespace kestrix::index::ecmascript {
namespace {

// Each pattern is tried on the packages below its folder: what is tried is bounded in bytes of the
// pattern times bytes of the folder.
constexpr std::size_t kMostPatterns = 1000;
constexpr std::size_t kLongestPattern = 512;
constexpr std::size_t kMostPlainMembers = 50'000;
constexpr std::size_t kMostMatchSteps = 500'000'000;

constexpr std::array kEntryKeys = {"source", "module", "main", "types", "typings"};
constexpr std::array<std::string_view, 5> kEntries = {"src/index", "index", "src/main", "lib/index",
                                                      "source/index"};
constexpr std::array<std::string_view, 4> kSourceFolders = {"src", "", "source", "lib"};

// The list under "packages:" of a pnpm-workspace.yaml.
std::vector<std::string> pnpm_packages(std::string_view text) {
  std::vector<std::string> found;
  for_each_scalar(Format::kYaml, text, [&](const Scalar& scalar) {
    if (scalar.path.size() == 2 && scalar.path.front() == "packages") {
      found.emplace_back(scalar.value);
    }
  });
  return found;
}

std::vector<std::string> rush_folders(const Json& rush) {
  std::vector<std::string> folders;
  const Json* projects = find_key(rush, "projects");
  if (projects == nullptr || !projects->is_array()) return folders;
  for (const Json& project : *projects) folders.push_back(text_at(project, "projectFolder"));
  return folders;
}

std::string_view below(std::string_view path, std::string_view folder) {
  return folder.empty() ? path : path.substr(folder.size() + 1);
}

}  // namespace

Packages::Packages(const FileTable& files) : files_(files) {
  for (FileId id = 0; id < files.size(); ++id) {
    const std::string_view path = files.path(id);
    const std::string_view name = base_name(path);
    if (name == "package.json") {
      add_package(path, files.read(id));
    } else if (name == "pnpm-workspace.yaml" || name == "lerna.json" || name == "rush.json") {
      read_workspace(path, files.read(id));
    }
  }
  for (const Package& package : packages_) by_folder_.emplace(package.folder, &package);
  link_members();
}

void Packages::add_package(std::string_view path, std::string_view text) {
  const Json manifest = parse_config(text);
  Package package{std::string(folder_of(path)), text_at(manifest, "name"), {}, {}, {}};
  for (const char* key : kEntryKeys) {
    std::string target = text_at(manifest, key);
    if (!target.empty()) package.entries.push_back(std::move(target));
  }
  if (const Json* exports = find_key(manifest, "exports")) package.exports = TargetMap(*exports);
  if (const Json* imports = find_key(manifest, "imports")) package.imports = TargetMap(*imports);
  if (const Json* workspaces = find_key(manifest, "workspaces")) {
    const Json* list = find_key(*workspaces, "packages");
    add_members(package.folder, texts_of(list == nullptr ? *workspaces : *list));
  }
  packages_.push_back(std::move(package));
}

void Packages::read_workspace(std::string_view path, std::string_view text) {
  const std::string_view folder = folder_of(path);
  if (path.ends_with(".yaml")) return add_members(folder, pnpm_packages(text));
  const Json config = parse_config(text);
  if (path.ends_with("rush.json")) return add_members(folder, rush_folders(config));
  const Json* list = find_key(config, "packages");
  add_members(folder, list == nullptr ? std::vector<std::string>{"packages/*"} : texts_of(*list));
}

bool Packages::is_beyond(std::size_t count, std::size_t most) {
  is_cut_ |= count >= most;
  return count >= most;
}

void Packages::add_members(std::string_view folder, const std::vector<std::string>& patterns) {
  Workspace& workspace = workspaces_[std::string(folder)];
  for (const std::string& pattern : patterns) {
    if (pattern.starts_with('!')) continue;
    if (pattern.find_first_of("*{") != std::string::npos) {
      add_patterns(workspace, pattern);
    } else if (auto member = join_normal(folder, pattern);
               member && !is_beyond(plain_members_++, kMostPlainMembers)) {
      workspace.folders.insert(std::move(*member));
    }
  }
}

void Packages::add_patterns(Workspace& workspace, std::string_view pattern) {
  if (pattern.starts_with("./")) pattern.remove_prefix(2);
  while (pattern.ends_with('/')) pattern.remove_suffix(1);
  if (pattern.size() > kLongestPattern) return;
  for (const std::string& way : expand_braces(pattern).value_or(std::vector<std::string>())) {
    if (!is_beyond(patterns_++, kMostPatterns)) workspace.patterns.emplace_back(way);
  }
}

bool Packages::is_member(const Workspace& workspace, std::string_view folder,
                         std::string_view relative) {
  if (workspace.folders.contains(std::string(folder))) return true;
  return std::ranges::any_of(workspace.patterns, [&](const Wildmatch& pattern) {
    match_steps_ += (pattern.size() + 1) * (relative.size() + 1);
    return !is_beyond(match_steps_, kMostMatchSteps) && pattern.matches(relative);
  });
}

void Packages::link_members() {
  for (const Package& package : packages_) {
    if (package.name.empty()) continue;
    for_each_folder_up(package.folder, [&](std::string_view folder) {
      const auto found = workspaces_.find(std::string(folder));
      if (found == workspaces_.end() || folder == package.folder) return;
      Workspace& workspace = found->second;
      if (is_member(workspace, package.folder, below(package.folder, folder))) {
        workspace.members.try_emplace(package.name, &package);
      }
    });
  }
}

const Packages::Package* Packages::around(std::string_view folder) const {
  const Package* nearest = nullptr;
  for_each_folder_up(folder, [&](std::string_view up) {
    const auto found = by_folder_.find(up);
    if (nearest == nullptr && found != by_folder_.end()) nearest = found->second;
  });
  return nearest;
}

const Packages::Package* Packages::named(std::string_view name, std::string_view folder) const {
  const Package* package = nullptr;
  for_each_folder_up(folder, [&](std::string_view up) {
    if (package != nullptr) return;
    if (const auto own = by_folder_.find(up);
        own != by_folder_.end() && own->second->name == name) {
      package = own->second;
    } else if (const auto workspace = workspaces_.find(std::string(up));
               workspace != workspaces_.end()) {
      const auto member = workspace->second.members.find(name);
      if (member != workspace->second.members.end()) package = member->second;
    }
  });
  return package;
}

std::optional<FileId> Packages::find(const Package& package, std::string_view subpath,
                                     Dialect dialect) const {
  std::vector<std::string> targets =
      package.exports.find(subpath.empty() ? "." : "./" + std::string(subpath));
  if (targets.empty() && subpath.empty()) targets = package.entries;
  if (const auto id = find_targets(package, targets, subpath, dialect)) return id;
  return find_entry(package, subpath, dialect);
}

// A declaration is taken only when no target leads to what it declares.
std::optional<FileId> Packages::find_targets(const Package& package,
                                             const std::vector<std::string>& targets,
                                             std::string_view subpath, Dialect dialect) const {
  std::optional<FileId> declaration;
  for (const std::string& target : targets) {
    const auto id = find_target(package, target, subpath, dialect);
    if (id && !is_declaration(files_.path(*id))) return id;
    if (!declaration) declaration = id;
  }
  return declaration;
}

std::optional<FileId> Packages::find_target(const Package& package, std::string_view target,
                                            std::string_view subpath, Dialect dialect) const {
  const auto path = join_normal(package.folder, target);
  if (!path || !is_below(*path, package.folder) || *path == package.folder) return std::nullopt;
  if (const auto id = find_plain(*path, dialect)) return id;
  const std::string_view relative = below(*path, package.folder);
  if (sources_of(relative).empty()) return std::nullopt;
  if (const auto id = find_source(package, relative, dialect)) return id;
  return find_entry(package, subpath, dialect);
}

std::optional<FileId> Packages::find_source(const Package& package, std::string_view target,
                                            Dialect dialect) const {
  for (const std::string& source : sources_of(target)) {
    if (const auto id = find_plain(join(package.folder, source), dialect)) return id;
  }
  return std::nullopt;
}

std::optional<FileId> Packages::find_entry(const Package& package, std::string_view subpath,
                                           Dialect dialect) const {
  const auto at = [&](std::string_view path) {
    return find_plain(join(package.folder, path), dialect);
  };
  if (subpath.empty()) {
    for (const std::string_view entry : kEntries) {
      if (const auto id = at(entry)) return id;
    }
    const std::string_view own = package.name;
    return at(join("src", own.substr(own.rfind('/') + 1)));
  }
  for (const std::string_view folder : kSourceFolders) {
    if (const auto id = at(join(folder, subpath))) return id;
  }
  return std::nullopt;
}

Packages::Internal Packages::find_internal(std::string_view specifier, std::string_view folder,
                                           Dialect dialect) const {
  Internal found;
  for_each_folder_up(folder, [&](std::string_view up) {
    const auto package = by_folder_.find(up);
    if (found.file || !found.specifiers.empty() || package == by_folder_.end()) return;
    for (std::string& target : package->second->imports.find(specifier)) {
      if (!target.starts_with('.')) {
        found.specifiers.push_back(std::move(target));
      } else if (!found.file) {
        found.file = find_target(*package->second, target, specifier.substr(1), dialect);
      }
    }
  });
  return found;
}

std::optional<FileId> Packages::find_plain(const std::string& path, Dialect dialect) const {
  if (const auto id = find_file(files_, path, dialect)) return id;
  return find_index(files_, path, dialect);
}

std::optional<FileId> Packages::find_path(const std::string& path, Dialect dialect) const {
  if (const auto id = find_file(files_, path, dialect)) return id;
  return find_folder(path, dialect);
}

std::optional<FileId> Packages::find_folder(const std::string& path, Dialect dialect) const {
  if (const auto own = by_folder_.find(path); own != by_folder_.end()) {
    if (const auto id = find(*own->second, "", dialect)) return id;
  }
  if (const auto id = find_index(files_, path, dialect)) return id;
  const Package* package = around(folder_of(path));
  if (package == nullptr || path == package->folder || !is_below(path, package->folder)) {
    return std::nullopt;
  }
  return find_source(*package, below(path, package->folder), dialect);
}

}  // namespace kestrix::index::ecmascript
