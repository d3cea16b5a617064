#include "kestrix/languages/ecmascript/targets.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "kestrix/languages/ecmascript/files.h"
#include "kestrix/text/paths.h"

namespace kestrix::index::ecmascript {
namespace {

constexpr int kDeepestConditions = 8;
// Each target is tried on every import, under many extensions, and so are its sources.
constexpr std::size_t kMostTargets = 32;
constexpr std::size_t kMostTargetBytes = 1024;  // of all of one key
constexpr std::size_t kMostSources = 12;
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
  for (std::size_t at = target.find('*');
       at != std::string::npos && target.size() < kMostTargetBytes;
       at = target.find('*', at + star.size())) {
    target.replace(at, 1, star);
  }
  return target;
}

void drop_beyond_limit(std::vector<std::string>& targets) {
  std::size_t bytes = 0;
  const auto first = std::ranges::find_if(targets, [&bytes](const std::string& target) {
    bytes += target.size();
    return bytes > kMostTargetBytes;
  });
  targets.erase(first, targets.end());
}

bool has_subpaths(const Json& map) {
  return map.is_object() && !map.empty() &&
         (map.begin().key().starts_with('.') || map.begin().key().starts_with('#'));
}

bool is_built(std::string_view folder) { return std::ranges::find(kBuilt, folder) != kBuilt.end(); }

}  // namespace

TargetMap::TargetMap(const Json& map) {
  if (!has_subpaths(map)) {
    collect(map, 0, exact_["."]);
    return;
  }
  for (const auto& [key, value] : map.items()) {
    std::vector<std::string>& targets = exact_[key];
    if (targets.empty()) collect(value, 0, targets);
    const bool pattern = key.find('*') != std::string::npos || key.ends_with('/');
    if (pattern && patterns_.size() < kMostPatterns) patterns_.push_back({key, targets});
  }
  std::ranges::stable_sort(patterns_, std::ranges::greater{},
                           [](const Pattern& pattern) { return pattern.key.size(); });
}

std::vector<std::string> TargetMap::find(std::string_view key) const {
  std::vector<std::string> targets;
  if (const auto exact = exact_.find(std::string(key)); exact != exact_.end()) {
    targets = exact->second;
    drop_beyond_limit(targets);
    return targets;
  }
  for (const Pattern& pattern : patterns_) {
    const auto star = star_of(pattern.key, key);
    if (!star) continue;
    targets = pattern.targets;
    for (std::string& target : targets) target = filled(std::move(target), *star);
    drop_beyond_limit(targets);
    break;
  }
  return targets;
}

std::vector<std::string> sources_of(std::string_view built) {
  std::vector<std::string> sources;
  std::string_view rest = without_extension(built);
  for (std::size_t slash = rest.find('/');
       slash != std::string_view::npos && sources.size() < kMostSources; slash = rest.find('/')) {
    if (!is_built(rest.substr(0, slash))) break;
    rest.remove_prefix(slash + 1);
    for (const std::string_view folder : kSources) sources.push_back(join(folder, rest));
  }
  return sources;
}

}  // namespace kestrix::index::ecmascript
