#include "kestrix/text/braces.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kestrix {
namespace {

// A pattern may come from a repository: together these bound the work of expanding it.
constexpr std::size_t kMostAlternatives = 256;
constexpr std::size_t kLongestWithBraces = 4096;

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

}  // namespace

std::optional<std::vector<std::string>> expand_braces(std::string_view pattern) {
  if (pattern.size() > kLongestWithBraces && next_brace(pattern, 0) != std::string_view::npos) {
    return std::nullopt;
  }
  std::vector<std::string> open{std::string(pattern)};
  std::vector<std::string> done;
  while (!open.empty()) {
    if (open.size() + done.size() > kMostAlternatives) return std::nullopt;
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

}  // namespace kestrix
