#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "kestrix/host/configuration/settings_signals.h"
#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/path_glob.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::FileId;
using index::Known;

constexpr Signal kPlace{"settings_path", 4.5, "is where a framework looks for settings", "",
                        "eShopOnWeb, nowinandroid"};
constexpr Signal kSample{"settings_sample", 4.0, "is a sample to be copied", "", "netbox, tmux"};

constexpr std::string_view kLauncher = "src/main/res/mipmap";
constexpr std::array<std::string_view, 2> kBuildFiles{"build.gradle.kts", "build.gradle"};
constexpr std::array<std::string_view, 2> kBuildSettings{"gradle.properties",
                                                         "gradle/libs.versions.toml"};

// What one copies to make one's own settings.
bool is_sample(std::string_view path) {
  const std::string_view name = index::base_name(path);
  if (name.ends_with(".sample") || name.ends_with(".example")) return true;
  constexpr std::array<std::string_view, 4> kMade{"dist", "example", "sample", "template"};
  constexpr std::array<std::string_view, 6> kOf{"config",   "configuration", "conf",
                                                "settings", "env",           "options"};
  return has_word(name, kMade) && has_word(name, kOf);
}

bool declares_code(const CodeEvidence& evidence, FileId file) {
  return std::ranges::any_of(evidence.index().declarations(file), [](const auto& row) {
    return is_type(row.kind) || row.kind == index::DeclarationKind::kFunction;
  });
}

// The frameworks' patterns, of the languages that the repository has.
std::vector<PathGlob> patterns_of(const index::RepositoryIndex& index) {
  std::set<std::string_view> languages;
  for (const auto& file : index.files()) languages.insert(file.language);
  std::set<std::string_view> patterns;
  for (const std::string_view language : languages) {
    for (const index::FrameworkName& row : index::framework_names(language)) {
      if (row.known == Known::kSettingsPath) patterns.insert(row.name);
    }
  }
  std::vector<PathGlob> globs;
  for (const std::string_view pattern : patterns) globs.emplace_back(pattern);
  return globs;
}

// An Android application has an icon of its own; it is configured by its build.
std::set<FileId> app_builds(const CodeEvidence& evidence) {
  const auto& index = evidence.index();
  std::set<std::string_view> modules;
  for (FileId file = 0; file < index.files().size(); ++file) {
    const std::string_view path = evidence.path(file);
    const std::size_t at = path.find(kLauncher);
    if (at == path.npos || (at > 0 && path[at - 1] != '/') || !evidence.is_product(file)) continue;
    modules.insert(path.substr(0, at));
  }
  std::set<FileId> builds;
  const auto add = [&](const std::string& path) {
    if (const auto file = index.find(path)) builds.insert(*file);
  };
  for (const std::string_view module : modules) {
    for (const std::string_view name : kBuildFiles) add(std::string(module).append(name));
  }
  if (builds.empty()) return builds;
  for (const std::string_view path : kBuildSettings) add(std::string(path));
  return builds;
}

}  // namespace

void add_settings_places(const CodeEvidence& evidence, ScoreSheet& sheet) {
  const std::vector<PathGlob> globs = patterns_of(evidence.index());
  const std::set<FileId> builds = app_builds(evidence);
  for (FileId file = 0; file < evidence.index().files().size(); ++file) {
    if (!evidence.roles(file).empty() || evidence.index().files()[file].document) continue;
    const std::string_view path = evidence.path(file);
    const auto matches = [path](const PathGlob& glob) { return glob.matches(path); };
    const bool found = std::ranges::any_of(globs, matches) || builds.contains(file);
    if (found) sheet.add(file, kPlace, 1);
    if (is_sample(path) && !declares_code(evidence, file)) sheet.add(file, kSample, 1);
  }
}

}  // namespace kestrix
