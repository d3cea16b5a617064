// The rules against slow, obvious versions of themselves: on every list of up to three edges over
// a small world, and on larger seeded worlds. Where the order of the edges must not matter, they
// are shuffled.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "tests/component/fake_host.h"

namespace kestrix::test {
namespace {

std::string slow_directory(const std::string& path) {
  const auto slash = path.rfind('/');
  std::string head = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  if (head.find_first_not_of('/') == std::string::npos) return head;
  while (head.ends_with('/')) head.pop_back();
  return head;
}

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

using SlowDependents =
    std::vector<std::pair<std::string, std::vector<std::pair<std::string, double>>>>;

auto& entry(auto& list, std::string_view key) {
  const auto found = std::ranges::find(list, key, [](const auto& item) { return item.first; });
  if (found != list.end()) return found->second;
  list.emplace_back(key, typename std::remove_cvref_t<decltype(list[0].second)>{});
  return list.back().second;
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

void expect_rules_agree(const Paths& some, const Edges& edges) {
  ASSERT_EQ(dispatch_files(some, edges), slow_dispatch(some, edges, 3));
  ASSERT_EQ(example_sources(some, edges), slow_examples(some, edges, 4));
  ASSERT_EQ(flat(dependents_of(edges)), slow_dependents(edges));
}

TEST(Rules, AgreeWithSlowVersionsOnEverySmallWorld) {
  World world;
  const Paths files{"a", "b", "d/c", "d/test", "fixtures/e"};
  Edges all;
  for (const auto& source : files) {
    for (const auto& target : files) all.push_back(edge(source, target, 2));
  }
  const std::vector<Paths> choices{{"a", "b", "d/c"},
                                   {"d/c", "d/test", "a", "d/c"},
                                   {"b", "a"},
                                   {"fixtures/e", "d/test", "b", "a"}};
  for (const Paths& some : choices) {
    for (const FileEdge& first : all) {
      for (const FileEdge& second : all) {
        expect_rules_agree(some, {first, second});
        for (const FileEdge& third : all) expect_rules_agree(some, {first, second, third});
      }
    }
    world.calls.clear();
  }
}

class RandomWorld {
 public:
  explicit RandomWorld(std::uint32_t seed) : random_(seed) {
    static const char* const kFolders[] = {"",      "a/",        "a/b/", "h/",
                                           "test/", "Fixtures/", "a//",  "\xC3\xA9/"};
    const int count = number(3, 30);
    for (int i = 0; i < count; ++i) {
      files.push_back(kFolders[number(0, 7)] +
                      std::string(1, static_cast<char>('A' + number(0, 40))));
    }
    const int edge_count = number(0, 200);
    for (int i = 0; i < edge_count; ++i) edges.push_back(edge(any(), any(), number(0, 3)));
  }

  Paths sample() {
    Paths some(static_cast<std::size_t>(number(0, 12)));
    std::ranges::generate(some, [&] { return any(); });
    return some;
  }

  void shuffle() { std::ranges::shuffle(edges, random_); }

  Paths files;
  Edges edges;

 private:
  int number(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
  const std::string& any() {
    return files[static_cast<std::size_t>(number(0, static_cast<int>(files.size()) - 1))];
  }

  std::mt19937 random_;
};

TEST(Rules, AgreeWithSlowVersionsOnRandomWorlds) {
  World world;
  for (std::uint32_t seed = 0; seed < 3000; ++seed) {
    SCOPED_TRACE(seed);
    RandomWorld random(seed);
    const Paths some = random.sample();
    expect_rules_agree(some, random.edges);
    const Paths dispatch = dispatch_files(some, random.edges);
    const Paths examples = example_sources(some, random.edges);
    random.shuffle();
    ASSERT_EQ(dispatch_files(some, random.edges), dispatch);
    ASSERT_EQ(example_sources(some, random.edges), examples);
    world.calls.clear();
  }
}

}  // namespace
}  // namespace kestrix::test
