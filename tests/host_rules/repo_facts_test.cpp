#include "kestrix/workers/wiki/repo_facts.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include "kestrix/host/repository/repository_root.h"
#include "kestrix/text/decoding.h"

namespace kestrix {
namespace {

using namespace std::string_literals;

TEST(Norm, GivesThePlannersForm) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"a/b.py", "a/b.py"},
      {"./a//b.py", "a/b.py"},
      {"a/./b.py", "a/b.py"},
      {"/a/b/", "a/b"},
      {"", ""},
      {".", ""},
      {"./", ""},
      {"a\\b.py", "a\\b.py"},
      {".env", ".env"},
      {"a/..b", "a/..b"},
      {"a\n/b", "a\n/b"},
  };
  for (const auto& [path, normal] : cases) {
    EXPECT_EQ(_norm(path), normal) << path;
    EXPECT_EQ(_norm(_norm(path)), normal) << path;
  }
}

TEST(DecodeText, ReadsEncodingsAndCutsByCharacters) {
  struct Case {
    std::string bytes;
    std::size_t max_chars;
    std::string text;
  };
  const Case cases[] = {
      {"plain", 100, "plain"},
      {"\xEF\xBB\xBFmarked", 3, "mar"},
      {"gr\xC3\xBC\xC3\x9F", 3, "gr\xC3\xBC"},
      {"\xF0\x9F\x98\x80\xF0\x9F\x98\x80", 1, "\xF0\x9F\x98\x80"},
      {"a\xFF"
       "b",
       100,
       "a\xEF\xBF\xBD"
       "b"},
      {"a\xE2\x82", 100, "a\xEF\xBF\xBD"},                            // cut off
      {"\xC0\xAF", 100, "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // overlong
      {"\xED\xA0\x80", 100, "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // a surrogate
      {"\xFF\xFF\xFF", 2, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xFF\xFE"
       "h\0i\0"s,
       100, "hi"},
      {"\xFE\xFF\0h\0i"s, 1, "h"},
      {"\xFF\xFE\x3D\xD8\x00\xDE"s, 100, "\xF0\x9F\x98\x80"},
      {"\xFF\xFE\x3D\xD8"s, 100, "\xEF\xBF\xBD"},
      {"\xFF\xFE"
       "a"s,
       100, "\xEF\xBF\xBD"},
      {"nul\0here"s, 100, ""},
      {std::string(9000, 'a') + '\0', 9100, std::string(9000, 'a') + '\0'},
      {"", 100, ""},
      {"abc", 0, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(decode_text(c.bytes, c.max_chars), c.text) << c.bytes;
}

class ReadText : public testing::Test {
 protected:
  void SetUp() override {
    root_ = std::filesystem::temp_directory_path() /
            ("kestrix-read-text-" + std::to_string(::getpid()));
    std::filesystem::create_directories(root_);
  }
  void TearDown() override { std::filesystem::remove_all(root_); }

  std::string write(const std::string& name, std::string_view bytes) const {
    std::filesystem::create_directories((root_ / name).parent_path());
    std::ofstream(root_ / name, std::ios::binary) << bytes;
    return name;
  }

  std::string read(const std::string& path, std::size_t max_chars = 400000) const {
    const RepositoryRoot root(root_);
    return _read_text({&root, path}, {.max_chars = max_chars}).str();
  }

  std::filesystem::path root_;
};

TEST_F(ReadText, CountsCharactersNotBytes) {
  std::string wide;
  for (int i = 0; i < 3000; ++i) wide += "\xE2\x82\xAC";
  EXPECT_EQ(read(write("wide", wide), 2999).size(), 3 * 2999U);
}

TEST_F(ReadText, ReadsWhenTheTextIsAskedFor) {
  const RepositoryRoot root(root_);
  const auto text = _read_text({&root, "late"}, {.max_chars = 100});
  EXPECT_EQ(text.str(), "");
  write("late", "here now");
  EXPECT_EQ(text.str(), "here now");
}

TEST_F(ReadText, IsEmptyForWhatIsNoTextFile) {
  write("target", "secret");
  write("folder/target", "secret");
  std::filesystem::create_symlink(root_ / "target", root_ / "link");
  std::filesystem::create_directory_symlink("folder", root_ / "linked");
  ASSERT_EQ(::mkfifo((root_ / "pipe").c_str(), 0600), 0);
  for (const char* path : {"missing", "", "folder", "link", "linked/target", "pipe", "/dev/zero",
                           "../secret", "folder/../../secret"}) {
    EXPECT_EQ(read(path), "") << path;
  }
  EXPECT_EQ(read(write("late-nul", std::string(5000, 'a') + '\0'), 10), "");
}

// What counts is the path within the repository.
TEST_F(ReadText, ReachesFilesHoweverDeepTheRootLies) {
  std::filesystem::path deep = root_;
  while (deep.native().size() < 3500) deep /= std::string(200, 'd');
  std::filesystem::create_directories(deep);
  std::string below;
  while (below.size() < 3000) below += std::string(100, 'e') + "/";
  const auto command =
      "cd '" + deep.native() + "' && mkdir -p '" + below + "' && printf far > '" + below + "file'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const RepositoryRoot root(deep);
  EXPECT_EQ(_read_text({&root, below + "file"}, {.max_chars = 10}).str(), "far");
}

}  // namespace
}  // namespace kestrix
