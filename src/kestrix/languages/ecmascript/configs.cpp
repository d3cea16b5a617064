#include "kestrix/languages/ecmascript/configs.h"

#include <algorithm>
#include <unordered_set>

#include "kestrix/text/paths.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index::ecmascript {
namespace {

// Each import looks at the files of a folder, at the prefixes of one length after the other, at the
// patterns that begin alike, and tries each place that they name.
constexpr std::size_t kMostVariants = 64;
constexpr std::size_t kLongestPrefix = 256;
constexpr std::size_t kMostAlike = 16;
constexpr std::size_t kMostTargets = 32;
constexpr std::size_t kMostCandidates = 128;

constexpr std::size_t kMostBases = 64;  // of one file, over all ways

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
    raw_.emplace(path, read(folder_of(path), files.read(id)));
    if (config) paths.emplace_back(path);
  }
  for (auto& [path, raw] : raw_) {
    for (const std::string& name : raw.extends) {
      if (const Raw* base = find_base(raw.folder, name)) raw.bases.push_back(base);
    }
  }
  std::ranges::stable_sort(paths, {},
                           [](const std::string& path) { return !is_main(base_name(path)); });
  for (const std::string& path : paths) add(path);
}

// A file that says what another one of its folder does is left out.
void Configs::add(std::string_view path) {
  Config config = effective(raw_.at(std::string(path)), is_main(base_name(path)));
  if (config.rules == nullptr && !config.base_url) return;
  std::vector<Config>& known = by_folder_[std::string(folder_of(path))];
  const auto same = [&config](const Config& other) {
    return !config.main && other.rules == config.rules && other.from == config.from;
  };
  if (std::ranges::any_of(known, same)) return;
  is_cut_ |= known.size() >= kMostVariants;
  if (known.size() < kMostVariants) known.push_back(std::move(config));
}

Configs::Raw Configs::read(std::string_view folder, std::string_view text) {
  Raw raw{std::string(folder), {}, {}, {}, {}};
  const Json json = parse_config(text);
  if (const Json* extends = find_key(json, "extends")) raw.extends = texts_of(*extends);
  keep_first(raw.extends, kMostBases);
  const Json* options = find_key(json, "compilerOptions");
  if (options == nullptr) return raw;
  if (std::string base = text_at(*options, "baseUrl"); !base.empty())
    raw.base_url = std::move(base);
  const Json* paths = find_key(*options, "paths");
  if (paths != nullptr && paths->is_object()) raw.rules = rules_of(*paths);
  return raw;
}

Configs::Rules Configs::rules_of(const Json& paths) {
  Rules rules;
  for (const auto& [pattern, value] : paths.items()) {
    std::vector<std::string> targets = texts_of(value);
    keep_first(targets, kMostTargets);
    const std::size_t star = pattern.find('*');
    if (star == std::string::npos) {
      rules.exact.try_emplace(pattern, std::move(targets));
      continue;
    }
    is_cut_ |= star > kLongestPrefix;
    if (star > kLongestPrefix) continue;
    std::vector<Starred>& alike = rules.by_prefix[pattern.substr(0, star)];
    if (alike.empty()) rules.lengths.push_back(star);
    is_cut_ |= alike.size() >= kMostAlike;
    if (alike.size() < kMostAlike) alike.push_back({pattern.substr(star + 1), std::move(targets)});
  }
  sort_distinct(rules.lengths);
  std::ranges::reverse(rules.lengths);
  return rules;
}

// What a file says itself goes before what its bases say, of which the last goes first; paths are
// seen from the base URL that is in force, whoever sets it.
Configs::Config Configs::effective(const Raw& leaf, bool main) {
  Config config{nullptr, {}, std::nullopt, main};
  bool has_base_url = false;
  bool has_rules = false;
  std::unordered_set<const Raw*> seen;
  std::vector<const Raw*> open = {&leaf};
  while (!open.empty() && seen.size() < kMostBases && !(has_rules && has_base_url)) {
    const Raw& raw = *open.back();
    open.pop_back();
    if (!seen.insert(&raw).second) continue;
    if (raw.rules && !has_rules) {
      has_rules = true;
      config.from = raw.folder;
      const bool empty = raw.rules->exact.empty() && raw.rules->by_prefix.empty();
      config.rules = empty ? nullptr : &*raw.rules;
    }
    if (raw.base_url && !has_base_url) {
      has_base_url = true;
      config.base_url = located(raw.folder, leaf.folder, *raw.base_url);
    }
    open.insert(open.end(), raw.bases.begin(), raw.bases.end());
  }
  is_cut_ |= seen.size() >= kMostBases && !open.empty();
  if (config.base_url) config.from = *config.base_url;
  return config;
}

const Configs::Raw* Configs::find_base(std::string_view folder, const std::string& name) const {
  std::optional<std::string> path;
  if (name.starts_with('.')) {
    path = join_normal(folder, name);
  } else {
    const std::size_t end = name.find('/', name.starts_with('@') ? name.find('/') + 1 : 0);
    const auto* package = packages_.named(std::string_view(name).substr(0, end), folder);
    if (package == nullptr) return nullptr;
    path = join_normal(package->folder, end == std::string::npos ? "" : name.substr(end + 1));
  }
  if (!path) return nullptr;
  for (const char* suffix : {"", ".json", "/tsconfig.json"}) {
    const auto found = raw_.find(*path + suffix);
    if (found != raw_.end()) return &found->second;
  }
  return nullptr;
}

// An exact rule, else the one with the longest prefix.
std::optional<Configs::Match> Configs::match(const Rules& rules, std::string_view specifier) {
  if (const auto exact = rules.exact.find(std::string(specifier)); exact != rules.exact.end()) {
    return Match{specifier, {}, &exact->second};
  }
  for (const std::size_t length : rules.lengths) {
    if (length > specifier.size()) continue;
    const auto alike = rules.by_prefix.find(std::string(specifier.substr(0, length)));
    if (alike == rules.by_prefix.end()) continue;
    const std::string_view rest = specifier.substr(length);
    for (const Starred& rule : alike->second) {
      if (!rest.ends_with(rule.suffix)) continue;
      return Match{specifier.substr(0, length), rest.substr(0, rest.size() - rule.suffix.size()),
                   &rule.targets};
    }
  }
  return std::nullopt;
}

void Configs::add_targets(const Config& config, std::string_view leaf, const Match& match,
                          Candidates& found) {
  found.named |= !match.prefix.empty();
  for (const std::string& written : *match.targets) {
    auto target = located(config.from, leaf, written);
    if (!target || found.paths.size() >= kMostCandidates) continue;
    const std::size_t at = target->find('*');
    if (at != std::string::npos) target->replace(at, 1, match.star);
    if (auto path = join_normal("", *target)) found.paths.push_back(std::move(*path));
  }
}

Configs::Candidates Configs::find(std::string_view specifier, std::string_view folder) const {
  Candidates found;
  bool nearest = true;
  for_each_folder_up(folder, [&](std::string_view up) {
    const auto configs = by_folder_.find(std::string(up));
    if (configs == by_folder_.end()) return;
    for (const Config& config : configs->second) {
      const auto fit = config.rules ? match(*config.rules, specifier) : std::nullopt;
      if (fit) add_targets(config, up, *fit, found);
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
