#include "kestrix/host/path_glob.h"

#include <algorithm>
#include <string>

#include "kestrix/text/braces.h"

namespace kestrix {
namespace {

bool has_wildcard(std::string_view pattern) {
  return pattern.find_first_of("*?[") != std::string_view::npos;
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
      ways_.emplace_back(wanted + "**");
    } else {
      ways_.emplace_back(wanted);
      if (!has_wildcard(wanted)) ways_.emplace_back(wanted + "/**");
    }
  }
  if (!std::ranges::all_of(ways_, &index::Wildmatch::is_valid)) fail(pattern, "is malformed");
}

bool PathGlob::matches(std::string_view path) const {
  return std::ranges::any_of(ways_, [path](const auto& way) { return way.matches(path); });
}

}  // namespace kestrix
