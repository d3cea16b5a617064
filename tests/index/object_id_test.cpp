#include "kestrix/git/object_id.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/index/scratch.h"

namespace kestrix::index {
namespace {

TEST(ObjectId, IsGits) {
  const Scratch scratch;
  // Around the ends of blocks, where the length no longer fits into the last one.
  std::string expected;
  std::string names;
  for (const std::size_t size : {0, 1, 40, 46, 47, 48, 54, 55, 56, 57, 63, 64, 65, 1000, 70000}) {
    std::string content;
    while (content.size() < size) content += static_cast<char>(content.size() % 251);
    const std::string name = fmt::format("f{}", size);
    scratch.write(name, content);
    names += " " + name;
    for (const auto byte : blob_id(content)) expected += fmt::format("{:02x}", byte);
    expected += '\n';
  }
  EXPECT_EQ(scratch.run("git hash-object --no-filters" + names), expected);
}

}  // namespace
}  // namespace kestrix::index
