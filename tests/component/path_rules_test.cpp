#include <gtest/gtest.h>

#include "kestrix/workers/wiki/page_sources/rules.h"
#include "tests/component/builders.h"

namespace kestrix::test {
namespace {

TEST(IsFixturePath, FindsWholeDirectoryNamesInAnyCase) {
  for (const char* path :
       {"tests/fixtures/data.json", "tests/Fixtures/data.json", "src/__snapshots__/App.snap",
        "golden/expected.txt", "/fixtures/x", "fixtures/", "a//TESTDATA//b", "x/test_data/y"}) {
    EXPECT_TRUE(is_fixture_path(path)) << path;
  }
  for (const char* path :
       {"fixtures", "", "tests/fixtures_util.py", "tests/my_fixtures/x.py",
        "tests/test-data/x.json", "tests\\fixtures\\x.json", "golden", "fixture\xC5\xBF/x"}) {
    EXPECT_FALSE(is_fixture_path(path)) << path;
  }
}

TEST(CurrentFirst, MovesArchivedDocumentsBehindAndCutsAfterwards) {
  const Paths docs{"docs/archive/a.md", "docs/b.md", "docs/Old/c.md", "docs/d.md"};
  const struct {
    std::ptrdiff_t max_files;
    Paths expected;
  } cases[] = {
      {3, {"docs/b.md", "docs/d.md", "docs/archive/a.md"}},
      {10, {"docs/b.md", "docs/d.md", "docs/archive/a.md", "docs/Old/c.md"}},
      {0, {}},
      {-1, {"docs/b.md", "docs/d.md", "docs/archive/a.md"}},
      {-3, {"docs/b.md"}},
      {-4, {}},
      {-9, {}},
  };
  for (const auto& [max_files, expected] : cases) {
    EXPECT_EQ(current_first(docs, max_files), expected) << max_files;
  }
  EXPECT_EQ(current_first(docs).size(), 4U);
  EXPECT_EQ(current_first(Paths{"a", "b", "c", "d", "e"}).size(), 4U) << "the host's cap";
  EXPECT_EQ(current_first(Paths{"archive.md", "docs/archives/x.md", "a", "a"}, 4),
            (Paths{"archive.md", "docs/archives/x.md", "a", "a"}));
  EXPECT_EQ(current_first(Paths{}, 3), Paths{});
}

TEST(UnitTopic, JoinsTheTitleAndTheDistinctStems) {
  Paths twenty;
  for (char c = 'a'; c < 'a' + 20; ++c) twenty.push_back(std::string(1, c) + ".py");
  Paths hidden{"__a.py", "__b.py"};
  hidden.insert(hidden.end(), twenty.begin(), twenty.end());
  const struct {
    std::string title;
    Paths files;
    std::string expected;
  } cases[] = {
      {"Parser", {}, "Parser"},
      {"Parser",
       {"a/parser.py", "__main__.py", "b/parser.js", "Lexer.py", "_util.py"},
       "Parser parser Lexer _util"},
      {"", {"a", "b"}, " a b"},
      {"", {}, ""},
      {" Two  words ", {"x/.py", "y.c"}, " Two  words   y"},
      {"T", twenty, "T a b c d e f g h i j k l"},
      {"T", hidden, "T a b c d e f g h i j k l"},
  };
  for (const auto& [title, files, expected] : cases) EXPECT_EQ(unit_topic(title, files), expected);
}

TEST(DirectoryOf, FollowsThePosixRule) {
  const std::pair<const char*, const char*> cases[] = {
      {"a/b/c.py", "a/b"}, {"a//c.py", "a"}, {"/c.py", "/"}, {"//c.py", "//"},
      {"c.py", ""},        {"", ""},         {"a/", "a"},    {"/", "/"},
  };
  for (const auto& [path, directory] : cases) EXPECT_EQ(directory_of(path), directory) << path;
}

TEST(IsConfigPath, TestsNamesThenDirectories) {
  for (const char* path :
       {"Settings.YAML", "app/config.py", ".env", "deploy/.env.production", ".envrc", ".ENV",
        "config/app.py", "src/config/db.py", "config/", "tox.ini", "a/SETUP.cfg"}) {
    EXPECT_TRUE(is_config_path(path)) << path;
  }
  for (const char* path : {"Config/app.py", "src/config", "myconfig/app.py", "config.yaml.bak", "",
                           "env", "src/my.env", "config.xml", "settings.ini", "config"}) {
    EXPECT_FALSE(is_config_path(path)) << path;
  }
}

TEST(IsRegistryName, TakesWholeWordsAtTheEnd) {
  for (const char* name :
       {"TOOL_REGISTRY", "tool_handlers", "_PLUGINS", "Registries", "tools", "plugin_registry"}) {
    EXPECT_TRUE(is_registry_name(name)) << name;
  }
  for (const char* name : {"MYTOOLS", "TOOLS_LIST", "HANDLER", "PLUGIN", "MYREGISTRY", ""}) {
    EXPECT_FALSE(is_registry_name(name)) << name;
  }
}

TEST(MostCommon, BreaksTiesByFirstCounted) {
  Counter<std::string, int> counter;
  for (const char* key : {"b", "a", "c", "a", "c"}) counter.add(std::string(key), 1);
  counter.add(std::string("zero"), 0);
  using Entries = std::vector<std::pair<std::string, int>>;
  EXPECT_EQ(counter.most_common(1), (Entries{{"a", 2}}));
  EXPECT_EQ(counter.most_common(3), (Entries{{"a", 2}, {"c", 2}, {"b", 1}}));
  EXPECT_EQ(counter.most_common(9).size(), 4U);
  EXPECT_EQ(counter["never"], 0);
  EXPECT_FALSE(counter.contains("never"));
}

}  // namespace
}  // namespace kestrix::test
