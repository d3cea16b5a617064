#include "kestrix/languages/ecmascript/configs.h"

#include <algorithm>
#include <unordered_set>

#include "kestrix/text/paths.h"

namespace kestrix::index::ecmascript {
namespace {

constexpr std::size_t kMostTargets = 100;  // of a pattern: each is tried on every import that fits

constexpr std::string_view kConfigFolder = "${configDir}";

bool is_config(std::string_view name) {
  return name.ends_with(".json") && (name.starts_with("tsconfig") || name.starts_with("jsconfig"));
}

bool is_main(std::string_view name) { return name == "tsconfig.json" || name == "jsconfig.json"; }

// A path written in a configuration file, below the repository; `leaf` is the folder of the file
// that does the extending.
std::optional<std::string> located(std::string_view folder, std::string_view leaf,
                                   std::string_view written) {
  if (!written.starts_with(kConfigFolder)) return join_normal(folder, written);
  written.remove_prefix(std::min(kConfigFolder.size() + 1, written.size()));
  return join_normal(leaf, written);
}

}  // namespace

Configs::Configs(const FileTable& files, const Packages& packages) : packages_(packages) {
  std::vector<std::string> paths;
  for (FileId id = 0; id < files.size(); ++id) {
    const std::string_view path = files.path(id);
    if (!path.ends_with(".json")) continue;
    const std::string_view name = base_name(path);
    const bool config = is_config(name);
    // Bases may have any name; they are recognised by where they are kept or what they hold.
    if (!config && name.find("tsconfig") == std::string_view::npos &&
        path.find("tsconfig") == std::string_view::npos) {
      continue;
    }
    raw_.emplace(path, Raw{std::string(folder_of(path)), parse_config(files.read(id))});
    if (config) paths.emplace_back(path);
  }
  std::ranges::stable_sort(paths, {},
                           [](const std::string& path) { return !is_main(base_name(path)); });
  for (const std::string& path : paths) {
    Config config = effective(path);
    if (config.rules.empty() && !config.base_url) continue;
    by_folder_[std::string(folder_of(path))].push_back(std::move(config));
  }
}

// Bases first, so that what extends them overrides; each file once, whatever the loops.
Configs::Config Configs::effective(std::string_view path) const {
  std::vector<std::string> order;
  std::unordered_set<std::string> seen;
  std::vector<std::string> open = {std::string(path)};
  while (!open.empty()) {
    const std::string next = std::move(open.back());
    open.pop_back();
    const auto raw = raw_.find(next);
    if (raw == raw_.end() || !seen.insert(next).second) continue;
    order.push_back(next);
    for (std::string& base : bases_of(raw->second)) open.push_back(std::move(base));
  }
  Config config{{}, std::nullopt, is_main(base_name(path))};
  for (std::size_t at = order.size(); at > 0; --at) {
    apply(raw_.at(order[at - 1]), folder_of(path), config);
  }
  return config;
}

std::vector<std::string> Configs::bases_of(const Raw& raw) const {
  std::vector<std::string> bases;
  const Json* extends = find_key(raw.json, "extends");
  if (extends == nullptr) return bases;
  for (const std::string& name : texts_of(*extends)) {
    if (auto base = find_base(raw.folder, name)) bases.push_back(std::move(*base));
  }
  return bases;
}

std::optional<std::string> Configs::find_base(std::string_view folder,
                                              const std::string& name) const {
  std::optional<std::string> path;
  if (name.starts_with('.')) {
    path = join_normal(folder, name);
  } else {
    const std::size_t end = name.find('/', name.starts_with('@') ? name.find('/') + 1 : 0);
    const auto* package = packages_.named(std::string_view(name).substr(0, end), folder);
    if (package == nullptr) return std::nullopt;
    path = join_normal(package->folder, end == std::string::npos ? "" : name.substr(end + 1));
  }
  if (!path) return std::nullopt;
  for (const char* suffix : {"", ".json", "/tsconfig.json"}) {
    if (raw_.contains(*path + suffix)) return *path + suffix;
  }
  return std::nullopt;
}

void Configs::apply(const Raw& raw, std::string_view leaf, Config& config) const {
  const Json* options = find_key(raw.json, "compilerOptions");
  if (options == nullptr) return;
  if (const std::string base = text_at(*options, "baseUrl"); !base.empty()) {
    config.base_url = located(raw.folder, leaf, base);
  }
  const Json* paths = find_key(*options, "paths");
  if (paths == nullptr || !paths->is_object()) return;
  config.rules.clear();
  const std::string& from = config.base_url ? *config.base_url : raw.folder;
  for (const auto& [pattern, targets] : paths->items()) {
    const std::size_t star = pattern.find('*');
    Rule rule{pattern.substr(0, star),
              star == std::string::npos ? "" : pattern.substr(star + 1),
              star != std::string::npos,
              {}};
    for (const std::string& target : texts_of(targets)) {
      if (rule.targets.size() >= kMostTargets) break;
      if (auto place = located(from, leaf, target)) rule.targets.push_back(std::move(*place));
    }
    config.rules.push_back(std::move(rule));
  }
}

// An exact rule, else the one with the longest prefix.
const Configs::Rule* Configs::best_rule(const Config& config, std::string_view specifier) {
  const Rule* best = nullptr;
  for (const Rule& rule : config.rules) {
    if (!rule.star) {
      if (rule.prefix == specifier) return &rule;
    } else if (specifier.size() >= rule.prefix.size() + rule.suffix.size() &&
               specifier.starts_with(rule.prefix) && specifier.ends_with(rule.suffix) &&
               (best == nullptr || rule.prefix.size() > best->prefix.size())) {
      best = &rule;
    }
  }
  return best;
}

void Configs::add_targets(const Rule& rule, std::string_view specifier, Candidates& found) {
  found.named |= !rule.prefix.empty();
  const std::string_view star = specifier.substr(
      rule.prefix.size(), specifier.size() - rule.prefix.size() - rule.suffix.size());
  for (std::string target : rule.targets) {
    const std::size_t at = target.find('*');
    if (at != std::string::npos) target.replace(at, 1, star);
    if (auto path = join_normal("", target)) found.paths.push_back(std::move(*path));
  }
}

Configs::Candidates Configs::find(std::string_view specifier, std::string_view folder) const {
  Candidates found;
  bool nearest = true;
  for_each_folder_up(folder, [&](std::string_view up) {
    const auto configs = by_folder_.find(std::string(up));
    if (configs == by_folder_.end()) return;
    for (const Config& config : configs->second) {
      if (const Rule* rule = best_rule(config, specifier)) add_targets(*rule, specifier, found);
      if (nearest && config.main && config.base_url) {
        if (auto path = join_normal(*config.base_url, specifier)) {
          found.paths.push_back(std::move(*path));
        }
      }
    }
    nearest = false;
  });
  return found;
}

}  // namespace kestrix::index::ecmascript
