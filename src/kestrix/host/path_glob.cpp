#include "kestrix/host/path_glob.h"

#include <algorithm>
#include <string>

#include "kestrix/text/braces.h"

namespace kestrix {
namespace {

bool has_wildcard(std::string_view pattern) {
  return pattern.find_first_of("*?[") != std::string_view::npos;
}

// What every path that the pattern matches ends with: it is found out faster than by matching.
std::string literal_end(std::string_view pattern) {
  const std::size_t last = pattern.find_last_of("*?[]\\");
  if (last == std::string_view::npos) return std::string(pattern);
  std::string_view end = pattern.substr(last + 1);
  if (end.starts_with('/')) end.remove_prefix(1);  // no level may stand before it
  return std::string(end);
}

[[noreturn]] void fail(std::string_view pattern, std::string_view what) {
  throw BadGlob("the pattern \"" + std::string(pattern) + "\" " + std::string(what));
}

}  // namespace

PathGlob::PathGlob(std::string_view pattern) {
  auto alternatives = expand_braces(pattern);
  if (!alternatives) fail(pattern, "has too many alternatives in braces");
  for (std::string& wanted : *alternatives) {
    if (wanted.starts_with("./")) wanted.erase(0, 2);
    if (wanted.empty()) fail(pattern, "is empty");
    if (wanted.ends_with('/')) {
      add(wanted + "**");
    } else {
      add(wanted);
      if (!has_wildcard(wanted)) add(wanted + "/**");
    }
  }
  const auto is_valid = [](const Way& way) { return way.match.is_valid(); };
  if (!std::ranges::all_of(ways_, is_valid)) fail(pattern, "is malformed");
}

void PathGlob::add(const std::string& pattern) {
  ways_.push_back({literal_end(pattern), index::Wildmatch(pattern)});
}

bool PathGlob::matches(std::string_view path) const {
  return std::ranges::any_of(
      ways_, [path](const Way& way) { return path.ends_with(way.end) && way.match.matches(path); });
}

}  // namespace kestrix
