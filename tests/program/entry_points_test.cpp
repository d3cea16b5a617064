#include "kestrix/workers/wiki/entry_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "kestrix/workers/wiki/path_glob.h"

namespace kestrix {
namespace {

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

FileEdge edge(std::string_view source, std::string_view target) { return {source, target, 1}; }

// One of several edges from `source` into `targets`.
std::vector<FileEdge> edges_from(std::string_view source, const Strings& targets) {
  std::vector<FileEdge> edges;
  for (const auto& target : targets) edges.push_back(edge(source, target));
  return edges;
}

Strings names(const std::vector<EntryPointClass>& classes) {
  Strings out;
  for (const auto& each : classes) out.push_back(each.name);
  return out;
}

const Strings kJobs{"jobs/a.py", "jobs/b.py", "jobs/c.py"};

TEST(EntryPointClasses, AreDirectoriesThatOneOutsiderReaches) {
  const Strings paths{"main.py", "jobs/c.py", "jobs/a.py", "jobs/b.py", "jobs/a.py"};
  EXPECT_THAT(entry_point_classes(paths, edges_from("main.py", {"jobs/a.py", "jobs/b.py"})),
              ElementsAre(EntryPointClass{"jobs", kJobs}));
}

TEST(EntryPointClasses, NeedThreeFilesAndSeveralReachedByOne) {
  struct Case {
    const char* what;
    Strings paths;
    std::vector<FileEdge> edges;
  };
  const Strings seven{"m.py",      "jobs/1.py", "jobs/2.py", "jobs/3.py",
                      "jobs/4.py", "jobs/5.py", "jobs/6.py", "jobs/7.py"};
  const std::vector<Case> cases{
      {"two files", {"m.py", "jobs/a.py", "jobs/b.py"}, edges_from("m.py", kJobs)},
      {"one reached", {"m.py", kJobs[0], kJobs[1], kJobs[2]}, edges_from("m.py", {kJobs[0]})},
      {"one reached twice",
       {"m.py", kJobs[0], kJobs[1], kJobs[2]},
       {edge("m.py", kJobs[0]), edge("m.py", kJobs[0])}},
      {"two reached, by one each",
       {"m.py", "n.py", kJobs[0], kJobs[1], kJobs[2]},
       {edge("m.py", kJobs[0]), edge("n.py", kJobs[1])}},
      {"reached from inside", kJobs, edges_from("jobs/a.py", kJobs)},
      {"reached from below",
       {kJobs[0], kJobs[1], kJobs[2], "jobs/x/m.py"},
       edges_from("jobs/x/m.py", kJobs)},
      {"the top, which has no outside",
       {"a.py", "b.py", "c.py", "x/m.py"},
       edges_from("x/m.py", {"a.py", "b.py", "c.py"})},
      {"two of seven", seven, edges_from("m.py", {"jobs/1.py", "jobs/2.py"})},
      {"an outsider that is not among the paths", kJobs, edges_from("m.py", kJobs)},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(entry_point_classes(each.paths, each.edges), IsEmpty()) << each.what;
  }
}

TEST(EntryPointClasses, ComeByReachThenDirectoryWhateverTheOrderOfTheInput) {
  Strings paths{"main.py"};
  std::vector<FileEdge> edges;
  for (const std::string directory : {"f", "e", "d", "c", "b", "a"}) {
    for (const std::string file : {"/1", "/2", "/3"}) paths.push_back(directory + file);
  }
  paths.push_back("jobs.d/x");  // a sibling by name is no file of "jobs"
  for (std::size_t i = 1; i + 1 < paths.size(); ++i) {
    const bool left_out = paths[i] == "b/1" || paths[i] == "f/1";
    if (!left_out) edges.push_back(edge("main.py", paths[i]));
  }
  std::mt19937 random(7);
  for (int round = 0; round < 10; ++round) {
    EXPECT_THAT(names(entry_point_classes(paths, edges)), ElementsAre("a", "c", "d", "e", "b"));
    EXPECT_THAT(names(entry_point_classes(paths, edges, 1)), ElementsAre("a"));
    std::ranges::shuffle(edges, random);
    const Strings shuffled_paths = paths;  // the edges' views need the old strings
    Strings shuffled = shuffled_paths;
    std::ranges::shuffle(shuffled, random);
    EXPECT_THAT(names(entry_point_classes(shuffled, edges)), ElementsAre("a", "c", "d", "e", "b"));
  }
}

TEST(EntryPointsMatching, ListsTheSelectedFilesOnce) {
  const Strings paths{"jobs/b.py", "jobs/a.py", "main.py", "jobs/b.py"};
  EXPECT_EQ(entry_points_matching("jobs/*", paths),
            (EntryPointClass{"jobs/*", {"jobs/a.py", "jobs/b.py"}}));
  EXPECT_THROW(entry_points_matching("[", paths), BadGlob);
}

}  // namespace
}  // namespace kestrix
