// The rules against slow, obvious versions of themselves: on every list of up to three edges over
// a small world, and on larger seeded worlds. Where the order of the edges must not matter, they
// are shuffled.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/component/fake_host.h"
#include "tests/component/slow_rules.h"

namespace kestrix::test {
namespace {

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
