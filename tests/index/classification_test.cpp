#include "kestrix/files/classification.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

TEST(Classification, TellsProseFromSource) {
  for (const char* path : {"README.md", "docs/x.RST", "a.adoc", "notes.txt", "x.org", "README",
                           "LICENSE", "docs/CHANGELOG", "a/b.markdown"}) {
    EXPECT_TRUE(is_document_path(path)) << path;
  }
  for (const char* path : {"a.py", "CMakeLists.txt", "requirements.txt", "dev-requirements.txt",
                           "Makefile", "conf.yaml", "schema.sql", ".md", "readme.py", "md"}) {
    EXPECT_FALSE(is_document_path(path)) << path;
  }
}

TEST(Folders, AreVisitedFromTheNearestUpToALimit) {
  const auto visited = [](std::string_view folder) {
    std::vector<std::string_view> folders;
    for_each_folder_up(folder, [&](std::string_view up) { folders.push_back(up); });
    return folders;
  };
  EXPECT_EQ(visited("a/b"), (std::vector<std::string_view>{"a/b", "a", ""}));
  std::string deep = "d";
  for (int i = 0; i < 5000; ++i) deep += "/d";
  const auto some = visited(deep);
  EXPECT_LT(some.size(), 200U);
  EXPECT_EQ(some.front(), deep);
  EXPECT_EQ(some.back(), "");
}

}  // namespace
}  // namespace kestrix::index
