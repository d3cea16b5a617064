#include "kestrix/files/classification.h"

#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace kestrix::index
