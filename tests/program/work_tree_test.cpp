// What the program tells of a work tree: whether it is as git has it, what was left out, and why an
// answer may be incomplete.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class WorkTree : public testing::Test {
 protected:
  void SetUp() override {
    shell("git init -q repo");
    write("a.py", "x = 1\n");
    write("data/b.json", "{}\n");
    write("pic.bin", std::string("\0\1", 2));
    git("add -A");
    git("commit -qm first");
  }

  void write(const std::string& path, const std::string& text) const {
    program_.directory().write("repo/" + path, text);
  }
  void git(const std::string& command) const {
    shell("git -C repo -c user.name=n -c user.email=e -c protocol.file.allow=always " + command);
  }
  void shell(const std::string& command) const {
    const std::string whole = "cd '" + program_.path().native() + "' && export HOME=$PWD && { " +
                              command + "\n} > /dev/null 2>&1";
    EXPECT_EQ(std::system(whole.c_str()), 0) << command;
  }
  json answer() const {
    return json::parse(program_.run({"symbols", "repo", "--format", "json"}).out);
  }
  json clean() const { return answer()["clean"]; }

  ProgramUnderTest program_;
};

TEST_F(WorkTree, IsCleanWhereGitFindsNoChange) {
  EXPECT_EQ(clean(), true);
  shell("touch repo/a.py");
  EXPECT_EQ(clean(), true) << "the content decides";
  write("a.py", "x = 2\n");
  EXPECT_EQ(clean(), false);
  git("checkout a.py");
  EXPECT_EQ(clean(), true);
  write("new.py", "x = 1\n");
  EXPECT_EQ(clean(), false);
  write(".gitignore", "new.py\n");
  git("add .gitignore");
  EXPECT_NE(clean(), true) << "staged";
  git("commit -qm second");
  EXPECT_EQ(clean(), true);
  shell("rm repo/pic.bin");
  EXPECT_EQ(clean(), false);
}

TEST_F(WorkTree, IsNotCalledCleanWhereThatIsNotKnown) {
  shell("rm -rf repo/.git");
  EXPECT_TRUE(clean().is_null());
  git("init -q");
  EXPECT_TRUE(clean().is_null()) << "no commit";
}

TEST_F(WorkTree, NamesWhatIsLeftOut) {
  write(".gitignore", "out/\n");
  write("out/x", "");
  write("node_modules/m/index.js", "");
  std::filesystem::create_symlink("a.py", program_.path() / "repo/link.py");
  shell("rm repo/a.py");
  EXPECT_EQ(program_.run({"index", "repo", "--left-out", "--exclude", "data"}).out,
            "a.py\ttracked, but not in the work tree\n"
            "data/b.json\texcluded by a setting\n"
            "link.py\tsymbolic link\n"
            "node_modules/\tfolder of third-party code\n"
            "out/\tignored by git\n"
            "pic.bin\tbinary file\n");
  const json named =
      json::parse(program_.run({"index", "repo", "--left-out", "--format", "json"}).out);
  json counts = json::object();
  for (const json& each : named["paths"]) {
    const std::string reason = each["reason"];
    counts[reason] = counts.value(reason, 0) + 1;
  }
  EXPECT_EQ(counts, named["left_out"]);
}

TEST_F(WorkTree, TellsWhyAnAnswerMayBeIncomplete) {
  shell("cp -r repo other");
  git("submodule add -q ../other part");
  git("commit -qm part");
  git("sparse-checkout init --cone --sparse-index");
  const auto ended = program_.run({"symbols", "repo", "--format", "json"});
  const json warnings = json::parse(ended.out)["warnings"];
  EXPECT_THAT(warnings, ElementsAre("1 submodule is not looked at",
                                    "1 tracked file or folder is not in the work tree (a sparse "
                                    "checkout?)"));
  for (const json& warning : warnings) {
    EXPECT_THAT(ended.err, HasSubstr("page-sources: " + std::string(warning) + "\n"));
  }
}

}  // namespace
}  // namespace kestrix::program
