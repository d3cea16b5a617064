#include "kestrix/host/configuration/settings_host.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix {
namespace {

constexpr double kLeastPoints = 1.2;
constexpr std::size_t kMostGiven = 9;
constexpr double kGoodPoints = 2.4;
constexpr std::size_t kFew = 5;

// Settings of tools lie in hidden folders, and caches in hidden files.
bool is_hidden(std::string_view path) {
  const std::string_view name = index::base_name(path);
  if (name.starts_with('.') && !name.starts_with(".env")) return true;
  return path.starts_with('.') ? path.find('/') != std::string_view::npos
                               : path.find("/.") < path.size() - name.size() - 1;
}

bool is_for_developers(std::string_view path) {
  const std::string_view name = index::base_name(path);
  if (name == ".envrc") return true;  // of the developers' shells
  return name.starts_with(".env") && name.find("test") != std::string_view::npos;
}

// By its own name, wherever it lies.
bool is_named(std::string_view path) {
  std::string name(index::base_name(path));
  std::ranges::transform(name, name.begin(), ascii::lower);
  return CONFIG_BASENAMES.contains(name);
}

}  // namespace

SettingsHost::SettingsHost(const WikiGenerator& generator, const ScoreSheet& sheet) {
  const auto& index = generator.indexed();
  const CodeEvidence& code = generator.code_evidence();
  struct Candidate {
    bool named;
    double score;
    std::string path;
  };
  std::vector<Candidate> all;
  for (std::string& path : generator._planner_paths()) {
    if (!is_config_path(path) || is_hidden(path) || is_for_developers(path)) continue;
    const auto file = index.find(path);
    if (!file) continue;
    const bool environment = index::base_name(path).starts_with(".env");
    const double score = sheet.score(*file);
    const bool used = score > 0 || code.product_dependents(*file) > 0;
    const bool named = used && (environment || is_named(path));
    const bool plain = path.starts_with("config/") && !index.notes(*file).keys.empty() &&
                       code.roles(*file).empty();
    if (named || plain || score >= kLeastPoints) all.push_back({named, score, std::move(path)});
  }
  std::ranges::sort(all, {}, [](const Candidate& each) {
    return std::tuple(!each.named, -each.score, std::string_view(each.path));
  });
  // What shows little of being read is only better than nothing.
  const auto shown = [](const Candidate& each) { return each.named || each.score >= kGoodPoints; };
  const auto last = std::ranges::find_if_not(all, shown);
  const auto enough = static_cast<std::size_t>(last - all.begin());
  const std::size_t most = std::clamp(enough, kFew, kMostGiven);
  if (all.size() > most) all.resize(most);
  for (Candidate& each : all) records_.push_back({std::move(each.path)});
  std::ranges::sort(records_, {}, &SourceFileRecord::path);
}

}  // namespace kestrix
