#include "kestrix/git/git_config.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/index/scratch.h"

namespace kestrix::index {
namespace {

TEST(GitConfig, ReadsAsGitDoes) {
  Scratch scratch;
  scratch.write("included", "[core]\n\tfrom = included\n\tlast = included\n");
  scratch.write("never", "[core]\n\tfrom = never\n");
  scratch.write("config",
                "; comment\n# comment\n[core]\n\tplain = a b  # comment\n\tflag\n\tempty =\n"
                "\tquoted = \" a ; b \" c\n\tescaped = \"\\\"x\\\\y\\tz\"\n\tlong = one \\\n  two\n"
                "\tCamelCase = X\r\n[Branch \"Main \\\"x\\\"\"] Key=v\n[old.Sub]\nkey = w\n"
                "[core] twice = 1\n[core]\ntwice = 2\n[include]\npath = included\n"
                "[core]\nlast = own\n[includeIf \"gitdir:**/elsewhere/\"]\npath = never\n");
  GitConfig config(scratch.path());
  ASSERT_TRUE(config.read(scratch / "config"));
  for (const char* name : {"core.plain", "core.empty", "core.quoted", "core.escaped", "core.long",
                           "core.camelcase", "branch.Main \"x\".key", "old.sub.key", "core.twice",
                           "core.from", "core.last", "core.missing"}) {
    const auto value = config.value(name);
    std::string by_git =
        scratch.run(std::string("git config --includes -f config --get '") + name + "' || true");
    if (!by_git.empty()) by_git.pop_back();
    EXPECT_EQ(value.value_or(""), by_git) << name;
  }
  EXPECT_TRUE(config.is_true("core.flag"));
  EXPECT_FALSE(config.is_true("core.empty"));
}

TEST(GitConfig, IncludesWhereTheDirectoryMatches) {
  Scratch scratch;
  scratch.write("one", "[core]\none = yes\n");
  scratch.write(
      "config",
      "[includeIf \"gitdir:work/\"]\npath = one\n"
      "[includeIf \"gitdir/i:./WORK/repo/.git\"]\npath = ./one\n[include]\npath = config\n");
  EXPECT_FALSE(GitConfig(scratch / "play/repo/.git").read(scratch / "config") &&
               GitConfig(scratch / "play/repo/.git").is_true("core.one"));
  GitConfig config(scratch / "work/repo/.git");
  ASSERT_TRUE(config.read(scratch / "config"));
  EXPECT_TRUE(config.is_true("core.one"));
}

TEST(GitConfig, RefusesWhatIsMalformed) {
  Scratch scratch;
  for (const char* text :
       {"[core\n", "key = 1\n", "[core]\nkey = \"open\n", "[core]\nkey = \\q\n",
        "[core]\nkey value\n", "[core]\n=\n", "[\"x\"]\n", "[core \"x]\n", "[]\n",
        "[core]\nkey = \\", "[include]\npath = config\npath = config\npath = config\n"}) {
    scratch.write("config", text);
    EXPECT_FALSE(GitConfig(scratch.path()).read(scratch / "config")) << text;
  }
}

}  // namespace
}  // namespace kestrix::index
