#include "kestrix/host/path_glob.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace kestrix {
namespace {

// A pattern may come from a repository: together these bound the work of expanding it.
constexpr std::size_t kMostAlternatives = 256;
constexpr std::size_t kLongestWithBraces = 1024;

bool has_wildcard(std::string_view pattern) {
  return pattern.find_first_of("*?[") != std::string_view::npos;
}

[[noreturn]] void fail(std::string_view pattern, std::string_view what) {
  throw BadGlob("the pattern \"" + std::string(pattern) + "\" " + std::string(what));
}

// Where the group that opens at `open` splits: its commas and, last, its closing brace. Empty when
// nothing closes it or it holds no comma, which makes it plain text.
std::vector<std::size_t> splits_of(std::string_view pattern, std::size_t open) {
  std::vector<std::size_t> splits;
  std::size_t depth = 0;
  for (std::size_t at = open; at < pattern.size(); ++at) {
    const char c = pattern[at];
    if (c == '\\') ++at;
    if (c == '{') ++depth;
    if (c == ',' && depth == 1) splits.push_back(at);
    if (c != '}' || --depth > 0) continue;
    if (splits.empty()) return {};
    splits.push_back(at);
    return splits;
  }
  return {};
}

std::size_t next_brace(std::string_view pattern, std::size_t from) {
  for (std::size_t at = from; at < pattern.size(); ++at) {
    if (pattern[at] == '\\')
      ++at;
    else if (pattern[at] == '{')
      return at;
  }
  return std::string_view::npos;
}

// The patterns that replace one whose first group is expanded; only itself when it has none.
std::vector<std::string> expand_once(const std::string& pattern) {
  for (auto open = next_brace(pattern, 0); open != std::string::npos;
       open = next_brace(pattern, open + 1)) {
    const auto splits = splits_of(pattern, open);
    if (splits.empty()) continue;
    std::vector<std::string> expanded;
    std::size_t begin = open + 1;
    for (const std::size_t split : splits) {
      expanded.push_back(pattern.substr(0, open) + pattern.substr(begin, split - begin) +
                         pattern.substr(splits.back() + 1));
      begin = split + 1;
    }
    return expanded;
  }
  return {pattern};
}

std::vector<std::string> expand_braces(std::string_view pattern) {
  if (pattern.size() > kLongestWithBraces && next_brace(pattern, 0) != std::string_view::npos) {
    fail(pattern, "is too long for braces");
  }
  std::vector<std::string> open{std::string(pattern)};
  std::vector<std::string> done;
  while (!open.empty()) {
    if (open.size() + done.size() > kMostAlternatives) {
      fail(pattern, "has too many alternatives in braces");
    }
    const std::string next = std::move(open.back());
    open.pop_back();
    auto expanded = expand_once(next);
    if (expanded.size() == 1 && expanded.front() == next) {
      done.push_back(next);
    } else {
      std::ranges::move(expanded, std::back_inserter(open));
    }
  }
  return done;
}

}  // namespace

PathGlob::PathGlob(std::string_view pattern) {
  for (std::string& wanted : expand_braces(pattern)) {
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
