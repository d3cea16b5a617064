#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include "tests/component/fake_host.h"

namespace kestrix::test {
namespace {

const Paths kThree{"h/a.py", "h/b.py", "h/c.py"};

Paths numbered(const std::string& folder, int count) {
  Paths paths;
  for (int i = 0; i < count; ++i) paths.push_back(folder + std::to_string(i));
  return paths;
}

Edges reaching(std::string_view source, const Paths& targets, std::size_t count) {
  Edges edges;
  for (std::size_t i = 0; i < count; ++i) edges.push_back(edge(source, targets[i]));
  return edges;
}

Edges joined_edges(std::initializer_list<Edges> parts) {
  Edges edges;
  for (const Edges& part : parts) edges.insert(edges.end(), part.begin(), part.end());
  return edges;
}

TEST(DispatchFiles, CountsOnlyRootsOfOtherDirectories) {
  const struct {
    const char* what;
    Paths roots;
    Edges edges;
    Paths expected;
  } cases[] = {
      {"two of three",
       kThree,
       {edge("p/run.py", "h/a.py"), edge("p/run.py", "h/b.py")},
       {"p/run.py"}},
      {"one of three", kThree, {edge("p/run.py", "h/a.py")}, {}},
      {"same directory", kThree, {edge("h/i.py", "h/a.py"), edge("h/i.py", "h/b.py")}, {}},
      {"directory below",
       kThree,
       {edge("h/s/r.py", "h/a.py"), edge("h/s/r.py", "h/b.py")},
       {"h/s/r.py"}},
      {"directory above", kThree, {edge("r.py", "h/a.py"), edge("r.py", "h/b.py")}, {"r.py"}},
      {"a name that only begins alike",
       kThree,
       {edge("h2/r", "h/a.py"), edge("h2/r", "h/b.py")},
       {"h2/r"}},
      {"doubled slash is the same directory",
       kThree,
       {edge("h//i", "h/a.py"), edge("h//i", "h/b.py")},
       {}},
      {"top level shares a directory",
       {"a.py", "b.py", "x/c.py"},
       {edge("main.py", "a.py"), edge("main.py", "b.py"), edge("main.py", "x/c.py")},
       {}},
      {"one root three times",
       kThree,
       {edge("p", "h/a.py"), edge("p", "h/a.py"), edge("p", "h/a.py")},
       {}},
      {"a root is no dispatch",
       {"h/a.py", "g/b.py", "g/c.py"},
       {edge("h/a.py", "g/b.py"), edge("h/a.py", "g/c.py")},
       {}},
      {"repeated entries raise the threshold, not the reach",
       {"h/a.py", "h/a.py", "h/a.py", "h/a.py", "h/b.py", "h/b.py", "h/b.py"},
       {edge("p", "h/a.py"), edge("p", "h/b.py")},
       {}},
  };
  for (const auto& [what, roots, edges, expected] : cases) {
    EXPECT_EQ(dispatch_files(roots, edges), expected) << what;
  }
}

TEST(DispatchFiles, AsksForAThirdOfTheRootsRoundedUp) {
  const std::pair<int, std::size_t> cases[] = {{3, 2},  {4, 2},  {6, 2},   {7, 3},  {9, 3},
                                               {10, 4}, {12, 4}, {30, 10}, {31, 11}};
  for (const auto& [roots, least] : cases) {
    const Paths all = numbered("h/", roots);
    EXPECT_TRUE(dispatch_files(all, reaching("p", all, least - 1)).empty()) << roots;
    EXPECT_EQ(dispatch_files(all, reaching("p", all, least)), Paths{"p"}) << roots;
  }
}

TEST(DispatchFiles, RanksByReachThenPathAndCuts) {
  const Paths roots = numbered("h/", 6);
  const Edges edges =
      joined_edges({reaching("z/x", roots, 3), reaching("a/y", roots, 3), reaching("q/q", roots, 4),
                    reaching("B/x", roots, 3), reaching("a/b", roots, 2),
                    reaching("a/b/c", roots, 2), reaching("\xC3\xA9/x", roots, 3)});
  EXPECT_EQ(dispatch_files(roots, edges), (Paths{"q/q", "B/x", "a/y"}));
  EXPECT_EQ(dispatch_files(roots, edges, 9),
            (Paths{"q/q", "B/x", "a/y", "z/x", "\xC3\xA9/x", "a/b", "a/b/c"}));
  EXPECT_TRUE(dispatch_files(roots, edges, 0).empty());
}

// An edge that cannot be read, and a count of how often edges were.
struct Faulty {
  int* reads;
};
[[maybe_unused]] std::string_view target_of(const Faulty& edge) {
  ++*edge.reads;
  throw Error("unreadable edge");
}
[[maybe_unused]] std::string_view source_of(const Faulty& edge) { return target_of(edge); }

TEST(DispatchFiles, DoesNotTouchTheEdgesOfFewRoots) {
  int reads = 0;
  const std::vector<Faulty> edges{{&reads}};
  for (const int roots : {0, 1, 2}) {
    EXPECT_TRUE(dispatch_files(numbered("h/", roots), edges).empty());
  }
  EXPECT_EQ(reads, 0);
  EXPECT_THROW(dispatch_files(kThree, edges), Error);
}

// An edge that holds its own paths, as a stream gives it.
struct Streamed {
  std::string source;
  std::string target;
};
std::istream& operator>>(std::istream& in, Streamed& edge) {
  return in >> edge.source >> edge.target;
}
struct Stream {
  std::istream& in;

  auto begin() const { return std::istream_iterator<Streamed>(in); }
  auto end() const { return std::istream_iterator<Streamed>(); }
};
std::string source_of(const Streamed& edge) { return edge.source; }
std::string target_of(const Streamed& edge) { return edge.target; }

TEST(DispatchFiles, ReadsARangeThatCanBeReadOnceAndOwnsItsPaths) {
  std::istringstream text("p/run.py h/a.py p/run.py h/b.py h/i.py h/a.py");
  EXPECT_EQ(dispatch_files(kThree, Stream{text}), Paths{"p/run.py"});
}

TEST(DependentsOf, SumsWeightsInTheOrderOfTheFirstEdges) {
  const auto dependents =
      dependents_of(Edges{edge("x", "x", 9), edge("a", "t", 1), edge("b", "t", 4),
                          edge("a", "t", 3), edge("a", "s", 0)});
  ASSERT_EQ(dependents.size(), 2U) << "an edge to itself makes no key";
  EXPECT_EQ(dependents.front().first, "t");
  const auto& users = dependents.at("t");
  EXPECT_EQ(users.most_common(2),
            (std::vector<std::pair<std::string_view, double>>{{"a", 4}, {"b", 4}}));
  EXPECT_FALSE(dependents.at("s").empty()) << "a weight of 0 is an entry";
  EXPECT_TRUE(dependents_of(Edges{}).empty());
}

TEST(ExampleSources, RanksHelpersThenReach) {
  World world;
  const Paths tests{"tests/test_b.py", "tests/common.py", "tests/fixtures/sample.py",
                    "tests/test_a.py"};
  const Edges edges{edge("tests/test_a.py", "tests/common.py"),
                    edge("tests/test_b.py", "tests/common.py", 5),
                    edge("tests/test_a.py", "src/x.py"),
                    edge("tests/test_a.py", "src/y.py"),
                    edge("tests/test_b.py", "src/x.py"),
                    edge("tests/fixtures/sample.py", "src/z.py"),
                    edge("tests/test_b.py", "tests/fixtures/sample.py"),
                    edge("src/x.py", "tests/common.py")};
  const Paths ranked{"tests/common.py", "tests/test_a.py", "tests/test_b.py"};
  EXPECT_EQ(example_sources(tests, edges), ranked);
  EXPECT_EQ(world.calls, (std::vector<std::string>{
                             "is_test_path(src/x.py)", "is_test_path(src/y.py)",
                             "is_test_path(src/x.py)", "is_test_path(tests/fixtures/sample.py)"}));
  EXPECT_EQ(example_sources(tests, edges, 2), (Paths{ranked[0], ranked[1]}));
  EXPECT_EQ(example_sources(tests, edges, -1), (Paths{ranked[0], ranked[1]}));
  EXPECT_EQ(example_sources(tests, edges, 0), Paths{});
  EXPECT_EQ(example_sources(Paths{}, edges), Paths{});
  EXPECT_EQ(example_sources(Paths{"b", "a", "b", "fixtures/c"}, Edges{}), (Paths{"a", "b", "b"}));
  EXPECT_EQ(example_sources(Paths{"a", "b"}, Edges{edge("b", "b"), edge("b", "b")}),
            (Paths{"b", "a"}))
      << "an edge to itself counts, twice if it is there twice";
  EXPECT_EQ(example_sources(Paths{"a", "b"}, Edges{edge("b", "src/x"), edge("b", "other_test")}),
            (Paths{"b", "a"}));
}

}  // namespace
}  // namespace kestrix::test
