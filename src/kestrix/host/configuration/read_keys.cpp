#include "kestrix/host/configuration/read_keys.h"

#include <algorithm>
#include <array>

#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using index::IndexedReference;

constexpr std::size_t kShortestKey = 3;

constexpr std::array<std::string_view, 22> kOfPlatform{
    "APPDATA",  "BUNDLE_GEMFILE", "CI",   "COLORTERM", "COMSPEC",
    "DISPLAY",  "GITHUB_ACTIONS", "HOME", "HOMEDRIVE", "HOMEPATH",
    "HOSTNAME", "JAVA_HOME",      "LANG", "PATH",      "PWD",
    "SHELL",    "TEMP",           "TERM", "TMP",       "TMPDIR",
    "USER",     "USERPROFILE"};
constexpr std::array<std::string_view, 8> kStartsOfPlatform{"CARGO_", "LC_", "file.", "java.",
                                                            "line.",  "os.", "path.", "user."};

// "ConnectionStrings:Catalog", "connection_strings__catalog" and "CONNECTION-STRINGS.CATALOG"
// alike.
std::string normal(std::string_view key) {
  std::string same;
  for (const char c : key) {
    if (ascii::is_alpha(c) || ascii::is_digit(c)) {
      same += ascii::lower(c);
    } else if (!same.empty() && same.back() != '_') {
      same += '_';
    }
  }
  return same;
}

}  // namespace

ReadKeys::ReadKeys(const CodeEvidence& evidence) {
  for (const IndexedReference& to : evidence.index().references()) {
    if (to.role != index::Role::kReads || !evidence.is_product(to.source)) continue;
    const std::string name = evidence.index().name_of(to);
    if (name.size() < kShortestKey) continue;
    auto& places = by_file_[to.source];
    if (std::ranges::find(places, name, &Place::name) == places.end()) {
      places.push_back(evidence.place_of(to));
    }
    const bool fresh = keys_.insert(normal(name)).second;
    const std::size_t dot = name.find('.');
    if (fresh && dot != std::string::npos) ++below_[name.substr(0, dot)];
  }
}

bool ReadKeys::reads(std::string_view key) const {
  if (keys_.contains(normal(key))) return true;
  const std::string last = normal(key.substr(key.rfind('.') + 1));
  const bool several = last.find('_') != std::string::npos;
  return several && last.size() >= 2 * kShortestKey && keys_.contains(last);
}

bool ReadKeys::of_platform(std::string_view key) {
  return std::ranges::find(kOfPlatform, key) != kOfPlatform.end() ||
         std::ranges::any_of(kStartsOfPlatform,
                             [key](std::string_view start) { return key.starts_with(start); });
}

std::size_t ReadKeys::below(std::string_view name) const {
  const auto found = below_.find(name);
  return found == below_.end() ? 0 : found->second;
}

}  // namespace kestrix
