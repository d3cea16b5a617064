#include "kestrix/host/entry_points.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kestrix/host/path_glob.h"

namespace kestrix {
namespace {

using Strings = std::vector<std::string>;

TEST(EntryPointsMatching, ListsTheSelectedFilesOnce) {
  const Strings paths{"jobs/b.py", "jobs/a.py", "main.py", "jobs/b.py"};
  EXPECT_EQ(
      entry_points_matching("jobs/*", paths),
      (EntryPointClass{"jobs/*", {"jobs/a.py", "jobs/b.py"}, "files that the pattern matches"}));
  EXPECT_THROW(entry_points_matching("[", paths), BadGlob);
}

}  // namespace
}  // namespace kestrix
