#include "tests/component/slow_rules.h"

#include <algorithm>
#include <map>
#include <set>

#include "kestrix/utils/path_filter.h"

namespace kestrix::test {
namespace {

std::string slow_directory(const std::string& path) {
  const auto slash = path.rfind('/');
  std::string head = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  if (head.find_first_not_of('/') == std::string::npos) return head;
  while (head.ends_with('/')) head.pop_back();
  return head;
}

template <class List>
auto& entry(List& list, std::string_view key) {
  const auto found = std::ranges::find(list, key, [](const auto& item) { return item.first; });
  if (found != list.end()) return found->second;
  list.emplace_back(key, typename std::remove_cvref_t<decltype(list[0].second)>{});
  return list.back().second;
}

}  // namespace

Paths slow_dispatch(const Paths& roots, const Edges& edges, std::size_t limit) {
  if (roots.size() < 3) return {};
  const std::set<std::string> known(roots.begin(), roots.end());
  std::map<std::string, std::set<std::string>> reach;
  for (const auto& [source_view, target_view, weight] : edges) {
    const std::string source(source_view);
    const std::string target(target_view);
    if (known.contains(target) && !known.contains(source) &&
        slow_directory(source) != slow_directory(target)) {
      reach[source].insert(target);
    }
  }
  Paths files;
  for (std::size_t size = roots.size(); size >= 2 && 3 * size >= roots.size(); --size) {
    for (const auto& [source, reached] : reach) {
      if (reached.size() == size && files.size() < limit) files.push_back(source);
    }
  }
  return files;
}

Paths slow_examples(Paths tests, const Edges& edges, std::size_t max_files) {
  std::erase_if(tests, [](const std::string& path) { return is_fixture_path(path); });
  const std::set<std::string, std::less<>> candidates(tests.begin(), tests.end());
  const auto listed = [&](std::string_view path) { return candidates.contains(path); };
  const auto key = [&](const std::string& path) {
    int users = 0;
    int reached = 0;
    for (const FileEdge& edge : edges) {
      if (edge.target == path && listed(edge.source)) --users;
      if (edge.source == path && !listed(edge.target) && !is_test_path(edge.target)) --reached;
    }
    return std::tuple(users, reached, path);
  };
  std::ranges::sort(tests, {}, key);
  if (tests.size() > max_files) tests.resize(max_files);
  return tests;
}

SlowDependents slow_dependents(const Edges& edges) {
  SlowDependents dependents;
  for (const FileEdge& edge : edges) {
    if (edge.source != edge.target)
      entry(entry(dependents, edge.target), edge.source) += edge.weight;
  }
  return dependents;
}

SlowDependents flat(const Dependents& dependents) {
  SlowDependents all;
  for (const auto& [target, users] : dependents) {
    auto& list = entry(all, target);
    for (const auto& [source, weight] : users) entry(list, source) = weight;
  }
  return all;
}

}  // namespace kestrix::test
