// What settings files and options change in the answers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kestrix/host/settings/settings.h"
#include "kestrix/utils/error.h"
#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Strings = std::vector<std::string>;

TEST(Settings, AreReadWithTheirOrigin) {
  Settings settings;
  add_settings(settings, R"(
exclude = ["legacy/**",
           "x"]
include = "legacy/kept.py"
[roles]
test = "specs/**"
[entry_points]
"The jobs" = ["jobs/*", "tasks/*"]
[pages.errors]
pin = "./a//b.py"
ban = ["c.py"]
[limits]
further = 3
)",
               "f.toml");
  EXPECT_THAT(settings.paths, ElementsAre(PathWish{"legacy/**", false, "f.toml:2"},
                                          PathWish{"x", false, "f.toml:3"},
                                          PathWish{"legacy/kept.py", true, "f.toml:4"}));
  ASSERT_EQ(settings.roles.size(), 1U);
  EXPECT_EQ(settings.roles[0].from, "f.toml:6");
  ASSERT_EQ(settings.entry_points.size(), 1U);
  EXPECT_THAT(settings.entry_points[0].globs, ElementsAre("jobs/*", "tasks/*"));
  ASSERT_EQ(settings.pages.size(), 2U);
  EXPECT_EQ(settings.pages[0].path, "a/b.py");
  EXPECT_TRUE(settings.pages[0].pin);
  EXPECT_FALSE(settings.pages[1].pin);
  EXPECT_EQ(settings.limit("further"), 3U);
  add_settings(settings, "[limits]\nfurther = 5\n", "later.toml");
  EXPECT_EQ(settings.limit("further"), 5U);
}

TEST(Settings, WrongOnesAreNamedWithTheirLine) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"exclude = [1]", "f:1: a text"},
      {"\nexlude = []", "f:2: unknown key exlude"},
      {"[roles]\n\ntset = 'a'", "f:3: unknown role tset"},
      {"roles = 3", "f:1: roles is no table"},
      {"[pages.error]\npin = 'a'", "f:1: unknown page error"},
      {"[pages.errors]\nnail = 'a'", "f:2: unknown key pages.errors.nail"},
      {"[pages.flows]\npin = 'a'", "f:2: flows takes no pins"},
      {"[limits]\nfurther = -1", "f:2: a number from 0 to 100"},
      {"[limits]\nfurther = '1'", "f:2: a number"},
      {"exclude = [\n'a',\n'[']", "f:3: the pattern \"[\" is malformed"},
      {"a = [", "f:1: "},
      {std::string("x = 1\n") + std::string(40000, '.'), "f:2: more than 64 dots"},
      {"exclude = " + std::string(5000, '[') + std::string(5000, ']'), "f:1: "},
  };
  for (const auto& [text, told] : cases) {
    Settings settings;
    try {
      add_settings(settings, text, "f");
      ADD_FAILURE() << told;
    } catch (const Error& error) {
      EXPECT_THAT(error.what(), StartsWith(told));
    }
  }
}

class Steered : public testing::Test {
 protected:
  Steered() {
    program_.environment["XDG_CONFIG_HOME"] = (program_.path() / "config").native();
    for (const std::string name : {"a", "b", "c"}) {
      write("app/" + name + ".py", "class " + name + "Error(Exception): pass\n");
    }
    write("checks/check.py", "from app.a import aError\nclass SpecError(aError): pass\n");
    write("jobs/one.py", "x = 1\n");
    write("main.py", "x = 1\n");
  }

  void write(const std::string& path, const std::string& text) const {
    program_.directory().write("repo/" + path, text);
  }
  void settings(const std::string& text) const { write(".page-sources.toml", text); }
  std::string paths(const std::string& page) const {
    return program_.run({"repo", "--page", page, "--paths"}).out;
  }

  ProgramUnderTest program_;
};

TEST_F(Steered, RepositoryFileOverridesTheUsers) {
  program_.directory().write("config/page-sources/config.toml",
                             "exclude = ['app/{a,b}.py', 'checks']");
  EXPECT_EQ(paths("errors"), "app/c.py\n");
  settings("include = 'app/b.py'");
  EXPECT_EQ(paths("errors"), "app/b.py\napp/c.py\n");
  EXPECT_EQ(program_.run({"config", "repo", "--exclude", "app/b.py"}).out,
            "exclude\tapp/{a,b}.py\t" + (program_.path() / "config").native() +
                "/page-sources/config.toml:1\n"
                "exclude\tchecks\t" +
                (program_.path() / "config").native() +
                "/page-sources/config.toml:1\n"
                "include\tapp/b.py\t.page-sources.toml:1\n"
                "exclude\tapp/b.py\t--exclude\n"
                "read\t" +
                (program_.path() / "config").native() +
                "/page-sources/config.toml\nread\t.page-sources.toml\n");
}

TEST_F(Steered, PinsBansAndRoles) {
  settings(
      "[pages.errors]\npin = ['main.py', 'app/b.py', 'nowhere.py']\nban = 'app/c.py'\n"
      "[roles]\ntest = 'checks'\n");
  EXPECT_EQ(paths("errors"), "app/a.py\napp/b.py\nmain.py\n");
  EXPECT_THAT(program_.run({"why", "repo", "errors", "main.py"}).out,
              HasSubstr("number 1 of the further files on the page errors\n"
                        "  pinned by .page-sources.toml:2\n"));
  EXPECT_THAT(program_.run({"why", "repo", "errors", "app/b.py"}).out, HasSubstr("pinned by"));
  EXPECT_EQ(paths("examples"), "checks/check.py\n");
  settings("[pages.errors]\npin = 'main.py'\n[limits]\nfurther = 0\n");
  EXPECT_THAT(paths("errors"), HasSubstr("main.py\n")) << "pins are never cut";
}

TEST_F(Steered, VendoredFilesAreLeftOutAndCounted) {
  settings("[roles]\nvendored = 'app/**'\n");
  EXPECT_EQ(paths("errors"), "checks/check.py\n");
  const auto index = nlohmann::json::parse(program_.run({"index", "repo", "--format", "json"}).out);
  EXPECT_EQ(index["left_out"]["excluded by a setting"], 3);
}

TEST_F(Steered, NamedEntryPointsComeFirst) {
  settings("[entry_points]\nJobs = 'jobs/*'\n");
  EXPECT_THAT(program_.run({"repo", "--page", "flows"}).out,
              StartsWith("flows (1)\n  Jobs (1 entry point)  named by .page-sources.toml:2\n"));
}

TEST_F(Steered, WrongSettingsEndTheRun) {
  settings("\nexclud = 'a'\n");
  for (const Strings& arguments : {Strings{"repo"}, Strings{"config", "repo"}}) {
    const Ended ended = program_.run(arguments);
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.err, "page-sources: .page-sources.toml:2: unknown key exclud\n");
  }
}

}  // namespace
}  // namespace kestrix::program
