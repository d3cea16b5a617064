#include "kestrix/languages/ecmascript/targets.h"

#include <algorithm>
#include <array>
#include <optional>

#include "kestrix/languages/ecmascript/files.h"
#include "kestrix/text/paths.h"

namespace kestrix::index::ecmascript {
namespace {

constexpr int kDeepestConditions = 8;
constexpr std::size_t kMostTargets = 100;  // each is tried on every import
constexpr std::size_t kLongestTarget = 4096;
constexpr std::array<std::string_view, 17> kBuilt = {
    "build", "bundle", "cjs",  "compiled", "dist",    "dist-cjs", "dist-esm", "dist-types", "es",
    "esm",   "lib",    "node", "out",      "out-tsc", "types",    "typings",  "umd"};
constexpr std::array<std::string_view, 4> kSources = {"src", "", "source", "lib"};

// Conditions of some bundlers and surroundings only.
constexpr std::array<std::string_view, 11> kSpecial = {
    "browser", "bun",         "deno",         "edge-light",   "electron", "module",
    "worker",  "module-sync", "react-native", "react-server", "workerd"};

bool is_special(std::string_view condition) {
  return std::ranges::find(kSpecial, condition) != kSpecial.end();
}

// What every surrounding understands comes first.
// NOLINTNEXTLINE(misc-no-recursion): kDeepestConditions at most
void collect(const Json& value, int depth, std::vector<std::string>& targets) {
  if (targets.size() >= kMostTargets) return;
  if (value.is_string()) targets.push_back(value.get<std::string>());
  if (!value.is_structured() || depth == kDeepestConditions) return;
  for (const bool special : {false, true}) {
    for (const auto& [condition, inner] : value.items()) {
      if (is_special(condition) == special) collect(inner, depth + 1, targets);
    }
  }
}

// What the "*" of a pattern stands for in `key`.
std::optional<std::string_view> star_of(std::string_view pattern, std::string_view key) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) {
    if (!pattern.ends_with('/') || !key.starts_with(pattern)) return std::nullopt;
    return key.substr(pattern.size());
  }
  const std::string_view tail = pattern.substr(star + 1);
  if (!key.starts_with(pattern.substr(0, star)) || !key.ends_with(tail)) return std::nullopt;
  if (key.size() < pattern.size() - 1) return std::nullopt;
  return key.substr(star, key.size() - tail.size() - star);
}

std::string filled(std::string target, std::string_view star) {
  if (target.ends_with('/')) target += '*';
  for (std::size_t at = target.find('*'); at != std::string::npos && target.size() < kLongestTarget;
       at = target.find('*', at + star.size())) {
    target.replace(at, 1, star);
  }
  return target;
}

bool has_subpaths(const Json& map) {
  return map.is_object() && !map.empty() &&
         (map.begin().key().starts_with('.') || map.begin().key().starts_with('#'));
}

std::vector<std::string> matching_targets(const Json& map, std::string_view key) {
  std::vector<std::string> targets;
  std::string_view best;
  for (const auto& [pattern, value] : map.items()) {
    const auto star = star_of(pattern, key);
    if (!star || pattern.size() <= best.size()) continue;
    best = pattern;
    targets.clear();
    collect(value, 0, targets);
    for (std::string& target : targets) target = filled(std::move(target), *star);
  }
  return targets;
}

bool is_built(std::string_view folder) { return std::ranges::find(kBuilt, folder) != kBuilt.end(); }

std::string pattern_of(std::string_view glob) {
  std::string pattern;
  int alternatives = 0;
  for (std::size_t at = 0; at < glob.size(); ++at) {
    const std::string_view rest = glob.substr(at);
    if (rest.starts_with("**")) {
      pattern += ".*";
      at += rest.starts_with("**/") ? 2 : 1;
    } else if (rest[0] == '*') {
      pattern += "[^/]*";
    } else if (rest[0] == '{') {
      pattern += "(?:";
      ++alternatives;
    } else if (rest[0] == '}' && alternatives > 0) {
      pattern += ")";
      --alternatives;
    } else if (rest[0] == ',' && alternatives > 0) {
      pattern += "|";
    } else {
      pattern += RE2::QuoteMeta(re2::StringPiece(rest.data(), 1));
    }
  }
  return pattern;
}

}  // namespace

std::vector<std::string> targets_of(const Json& map, std::string_view key) {
  std::vector<std::string> targets;
  if (!has_subpaths(map)) {
    if (key == ".") collect(map, 0, targets);
    return targets;
  }
  if (const Json* exact = find_key(map, key)) {
    collect(*exact, 0, targets);
    return targets;
  }
  return matching_targets(map, key);
}

std::vector<std::string> sources_of(std::string_view built) {
  std::vector<std::string> sources;
  std::string_view rest = without_extension(built);
  for (std::size_t slash = rest.find('/'); slash != std::string_view::npos;
       slash = rest.find('/')) {
    if (!is_built(rest.substr(0, slash))) break;
    rest.remove_prefix(slash + 1);
    for (const std::string_view folder : kSources) sources.push_back(join(folder, rest));
  }
  return sources;
}

std::unique_ptr<RE2> folder_pattern(std::string_view glob) {
  if (glob.starts_with("./")) glob.remove_prefix(2);
  while (glob.ends_with('/')) glob.remove_suffix(1);
  return std::make_unique<RE2>(pattern_of(glob), RE2::Quiet);
}

}  // namespace kestrix::index::ecmascript
