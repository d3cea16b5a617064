#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "kestrix/git/work_tree.h"
#include "tests/index/scratch.h"

namespace kestrix::index {
namespace {

std::string commit_of(const std::filesystem::path& directory) {
  const auto found = find_work_tree(RootDirectory(directory)).work_tree;
  return found && !found->commit.empty() ? found->commit + '\n' : "none";
}

TEST(Revision, IsWhatGitSaysHeadIs) {
  const Scratch scratch;
  const auto git = [&](const std::string& what) {
    return scratch.run("git -C repo -c user.name=n -c user.email=e " + what);
  };
  scratch.write("repo/a/b.py", "x = 1\n");
  EXPECT_EQ(commit_of(scratch / "repo"), "none");
  scratch.run("git init -q repo");
  EXPECT_EQ(commit_of(scratch / "repo"), "none");
  git("add -A");
  git("commit -qm first");
  EXPECT_EQ(commit_of(scratch / "repo"), git("rev-parse HEAD"));
  EXPECT_EQ(commit_of(scratch / "repo/a"), git("rev-parse HEAD"));
  git("checkout -qb topic/deep");
  git("commit -q --allow-empty -m second");
  git("pack-refs --all");
  EXPECT_EQ(commit_of(scratch / "repo"), git("rev-parse HEAD"));
  git("commit -q --allow-empty -m third");
  EXPECT_EQ(commit_of(scratch / "repo"), git("rev-parse HEAD"));
  git("worktree add -q ../linked HEAD~1");
  EXPECT_EQ(commit_of(scratch / "linked"), git("rev-parse HEAD~1"));
}

}  // namespace
}  // namespace kestrix::index
