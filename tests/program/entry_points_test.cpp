#include "kestrix/host/entry_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "kestrix/host/path_glob.h"

namespace kestrix {
namespace {

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

FileEdge use(std::string_view source, std::string_view target) { return {source, target, 2}; }

// Edges are views: what the targets lie in has to outlive them.
template <class Targets>
std::vector<FileEdge> uses_of(std::string_view source, const Targets& targets) {
  std::vector<FileEdge> edges;
  for (const auto& target : targets) edges.push_back(use(source, target));
  return edges;
}
std::vector<FileEdge> uses(std::string_view source, std::initializer_list<const char*> literals) {
  return uses_of(source, literals);
}
std::vector<FileEdge> uses(std::string_view source, const Strings& targets) {
  return uses_of(source, targets);
}
std::vector<FileEdge> uses(std::string_view source, Strings&& targets) = delete;

Strings names(const std::vector<EntryPointClass>& classes) {
  Strings out;
  for (const auto& each : classes) out.push_back(each.name);
  return out;
}

Strings with(Strings paths, const Strings& more) {
  paths.insert(paths.end(), more.begin(), more.end());
  return paths;
}

const Strings kJobs{"jobs/a", "jobs/b", "jobs/c"};

TEST(EntryPointClasses, AreTheFilesOfADirectoryThatOneOutsiderUses) {
  const Strings paths{"main", "jobs/c", "jobs/a", "jobs/b", "jobs/a", "jobs/notes.json"};
  EXPECT_THAT(entry_point_classes(paths, uses("main", kJobs)),
              ElementsAre(EntryPointClass{"jobs", kJobs, "main uses 3 of its 3 files"}));
}

TEST(EntryPointClasses, NeedThreeFilesUsedByOneFileOutside) {
  struct Case {
    const char* what;
    Strings paths;
    std::vector<FileEdge> edges;
  };
  auto edges_of_ten = uses("m", kJobs);
  Strings ten{"m"};
  for (const char* name : {"d", "e", "f", "g", "h", "i", "j"}) {
    ten.push_back(std::string("jobs/") + name);
  }
  ten = with(ten, kJobs);
  for (std::size_t i = 1; i < 8; ++i) edges_of_ten.push_back(use(ten[i], "jobs/a"));
  const std::vector<Case> cases{
      {"two files", {"m", "jobs/a", "jobs/b"}, uses("m", kJobs)},
      {"two used", with({"m"}, kJobs), uses("m", {"jobs/a", "jobs/b"})},
      {"two used, one of them twice", with({"m"}, kJobs),
       uses("m", {"jobs/a", "jobs/b", "jobs/b"})},
      {"three used, by two files",
       with({"m", "n"}, kJobs),
       {use("m", "jobs/a"), use("m", "jobs/b"), use("n", "jobs/c")}},
      {"only handed on",
       with({"m"}, kJobs),
       {{"m", "jobs/a", 1}, {"m", "jobs/b", 1}, {"m", "jobs/c", 1}}},
      {"used from inside", with({"jobs/d"}, kJobs), uses("jobs/d", kJobs)},
      {"used from below", with({"jobs/x/m"}, kJobs), uses("jobs/x/m", kJobs)},
      {"the top, which has no outside", {"a", "b", "c", "x/m"}, uses("x/m", {"a", "b", "c"})},
      {"three of ten", ten, edges_of_ten},
      {"an outsider that is not among the paths", kJobs, uses("m", kJobs)},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(entry_point_classes(each.paths, each.edges), IsEmpty()) << each.what;
  }
  const Strings nine(ten.begin(), ten.end() - 4);
  EXPECT_THAT(names(entry_point_classes(with({"jobs/a", "jobs/b", "jobs/c"}, nine), edges_of_ten)),
              ElementsAre("jobs"));
}

TEST(EntryPointClasses, ComeByReachThenDirectoryWhateverTheOrderOfTheInput) {
  Strings paths{"main", "jobs.d/x"};
  Strings used;
  for (const std::string directory : {"f", "e", "d", "c", "b", "a"}) {
    for (const std::string file : {"/1", "/2", "/3", "/4"}) {
      paths.push_back(directory + file);
      if ((directory != "b" && directory != "f") || file != "/4") used.push_back(paths.back());
    }
  }
  auto edges = uses("main", used);
  std::mt19937 random(7);
  for (int round = 0; round < 10; ++round) {
    Strings shuffled = paths;
    std::ranges::shuffle(shuffled, random);
    std::ranges::shuffle(edges, random);
    EXPECT_THAT(names(entry_point_classes(shuffled, edges)), ElementsAre("a", "c", "d", "e", "b"));
    EXPECT_THAT(names(entry_point_classes(shuffled, edges, 1)), ElementsAre("a"));
  }
}

TEST(EntryPointsMatching, ListsTheSelectedFilesOnce) {
  const Strings paths{"jobs/b.py", "jobs/a.py", "main.py", "jobs/b.py"};
  EXPECT_EQ(
      entry_points_matching("jobs/*", paths),
      (EntryPointClass{"jobs/*", {"jobs/a.py", "jobs/b.py"}, "files that the pattern matches"}));
  EXPECT_THROW(entry_points_matching("[", paths), BadGlob);
}

}  // namespace
}  // namespace kestrix
