#include "kestrix/walk/walker.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "kestrix/utils/error.h"
#include "tests/index/scratch.h"

namespace kestrix::index {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Paths = std::vector<std::string>;

Paths paths_of(const WalkResult& result) {
  Paths paths;
  for (const WalkedFile& file : result.files) paths.push_back(file.path);
  return paths;
}

// Whatever is left out is named as often as it is counted.
WalkResult walk_in(const std::filesystem::path& path) {
  WalkResult result = walk(RootDirectory(path));
  SkipCounts counts;
  for (const LeftOut& left :
       walk(RootDirectory(path), {.excluded = {}, .name_left_out = true}).left_out) {
    EXPECT_FALSE(left.path.empty());
    counts.add(left.reason);
  }
  EXPECT_EQ(counts, result.skipped);
  return result;
}

// The paths that git itself lists, in the order of their bytes.
Paths listed_by_git(const Scratch& scratch, const std::string& directory) {
  const std::string output =
      scratch.run("cd '" + directory + "' && git ls-files -z -co --exclude-standard");
  Paths paths;
  for (std::size_t at = 0; at < output.size();) {
    paths.emplace_back(output.c_str() + at);
    at += paths.back().size() + 1;
  }
  std::ranges::sort(paths);
  paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
  std::erase_if(paths, [](const std::string& path) {  // what git lists without its being a file
    return path == ".out" || path == ".err" || path.ends_with('/');
  });
  return paths;
}

/// Sets an environment variable, or takes it away, for a test.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    set(value);
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;
  ~ScopedVariable() { set(before_ ? before_->c_str() : nullptr); }

 private:
  void set(const char* value) const {
    if (value == nullptr)
      ::unsetenv(name_);
    else
      ::setenv(name_, value, 1);
  }

  const char* name_;
  std::optional<std::string> before_;
};

class GitWalk : public testing::Test {
 protected:
  GitWalk() { scratch_.run("git init -q repo"); }

  void expect_as_git(const std::string& directory = "repo") {
    EXPECT_EQ(paths_of(walk_in(scratch_ / directory)), listed_by_git(scratch_, directory));
  }
  void repo(const std::string& path, std::string_view text = "") {
    scratch_.write("repo/" + path, text);
  }
  void git(const std::string& command) { scratch_.run("cd repo && git " + command); }

  Scratch scratch_;
};

TEST_F(GitWalk, AppliesIgnoreFilesAtEveryLevel) {
  repo(".gitignore", "*.log\n/build/\n!build/keep.txt\nfoo/*\n!foo/bar\n*.tmp  \n");
  repo("sub/.gitignore", "!keep.log\n/only-here\n");
  for (const char* path : {"a.log", "build/keep.txt", "build/x", "foo/bar/f", "foo/g", "x.tmp",
                           "sub/keep.log", "sub/other.log", "sub/deep/keep.log", "sub/only-here",
                           "sub/deep/only-here", "deep/build/x", "foobar", "sub/build"}) {
    repo(path);
  }
  expect_as_git();
  expect_as_git("repo/sub");
  expect_as_git("repo/sub/deep");
}

TEST_F(GitWalk, AppliesExcludesFromOutsideTheTree) {
  repo(".git/info/exclude", "*.secret\n!both.x\n");
  scratch_.write(".home/.config/git/ignore", "*.swp\n*.x\n");
  for (const char* path : {"a.secret", "b/c.secret", "a.swp", "both.x", "one.x", "kept"})
    repo(path);
  ::setenv("HOME", (scratch_ / ".home").c_str(), 1);
  expect_as_git();
  scratch_.write("elsewhere", "kept\n");
  git("config --global core.excludesFile " + (scratch_ / "elsewhere").native());
  expect_as_git();
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo")), ElementsAre("a.swp", "both.x", "one.x"));
  repo(".git/own", "*.swp\n");
  git("config core.excludesFile .git/own");
  expect_as_git();
}

TEST_F(GitWalk, TellsOfIgnoreFilesThatAreTooLong) {
  repo("sub/kept");
  repo("sub/early");
  std::string rules = "early\n";
  while (rules.size() < (std::size_t{1} << 20U) - 4) rules += "#";
  rules += "\nkept-and-more\nlate\n";  // the limit falls within a pattern
  const auto expect_told = [&](const std::string& file) {
    const WalkResult result = walk_in(scratch_ / "repo/sub");
    EXPECT_EQ(result.skipped[skipped::kGitUnreadable], 1U) << file;
    const auto paths = paths_of(result);
    EXPECT_THAT(paths, Contains("kept")) << file;
    return paths;
  };
  for (const std::string file : {".gitignore", "sub/.gitignore"}) {
    repo(file, rules);
    EXPECT_THAT(expect_told(file), Not(Contains("early"))) << file;
    std::filesystem::remove(scratch_ / ("repo/" + file));
  }
  repo(".git/info/exclude", rules);
  expect_told("info/exclude");
}

TEST_F(GitWalk, KeepsTrackedFilesThatRulesIgnore) {
  repo(".gitignore", "out/\n*.gen\n");
  for (const char* path : {"out/tracked", "out/deep/tracked", "a.gen"}) repo(path);
  git("add -f .");
  for (const char* path : {"out/new", "out/deep/new", "out/other/new", "b.gen"}) repo(path);
  repo("gone");
  git("add gone");
  scratch_.remove("repo/gone");
  const WalkResult result = walk_in(scratch_ / "repo");
  EXPECT_THAT(paths_of(result),
              ElementsAre(".gitignore", "a.gen", "out/deep/tracked", "out/tracked"));
  EXPECT_EQ(result.skipped[skipped::kMissing], 1U);
  EXPECT_EQ(result.skipped[skipped::kIgnored], 4U);
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo/out")), ElementsAre("deep/tracked", "tracked"));
}

TEST_F(GitWalk, WalksADirectoryPlainlyThatTheTreeAroundItIgnores) {
  repo(".gitignore", "vendored/\n*.log\n");
  repo("vendored/project/a.log");
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo/vendored/project")), ElementsAre("a.log"));
}

TEST_F(GitWalk, LeavesOutLinksSpecialFilesAndOtherRepositories) {
  repo("a.py");
  repo("dir/b.py");
  std::filesystem::create_symlink("a.py", scratch_ / "repo/link.py");
  std::filesystem::create_directory_symlink("dir", scratch_ / "repo/linked");
  std::filesystem::create_directory_symlink("..", scratch_ / "repo/dir/loop");
  ::mkfifo((scratch_ / "repo/pipe").c_str(), 0600);
  scratch_.run("git init -q repo/nested && touch repo/nested/c.py");
  git("-c user.name=n -c user.email=e commit -q --allow-empty -m x");
  scratch_.run(
      "git init -q other && cd other && touch d.py && git add . && "
      "git -c user.name=n -c user.email=e commit -q -m x && cd ../repo && "
      "git -c protocol.file.allow=always submodule add -q ../other sub");
  git("add link.py linked");
  const WalkResult result = walk_in(scratch_ / "repo");
  EXPECT_THAT(paths_of(result), ElementsAre(".gitmodules", "a.py", "dir/b.py"));
  EXPECT_EQ(result.skipped[skipped::kSymbolicLink], 3U);
  EXPECT_EQ(result.skipped[skipped::kSpecial], 1U);
  EXPECT_EQ(result.skipped[skipped::kNestedRepository], 1U);
  EXPECT_EQ(result.skipped[skipped::kSubmodule], 1U);
}

TEST_F(GitWalk, LeavesOutThirdPartyCodeThatIsTracked) {
  for (const char* path :
       {"go/vendor/modules.txt", "go/vendor/x/y.go", "vendor/autoload.php", "vendor/x/Y.php",
        "php/vendor/composer/x.php", "web/node_modules/m/i.js", "own/vendor/shop.py",
        "own/vendors/modules.txt", "own/vendor0.py", "vendor.py", "modules.txt"}) {
    repo(path);
  }
  git("add . && git rm -q --cached php/vendor/composer/x.php");
  const WalkResult result = walk_in(scratch_ / "repo");
  EXPECT_THAT(paths_of(result), ElementsAre("modules.txt", "own/vendor/shop.py", "own/vendor0.py",
                                            "own/vendors/modules.txt", "vendor.py"));
  EXPECT_EQ(result.skipped[skipped::kThirdParty], 4U);
  EXPECT_EQ(result.skipped[skipped::kMissing], 0U);
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo/go/vendor/x")), ElementsAre("y.go"));
}

TEST_F(GitWalk, TakesNamesAsBytes) {
  for (const char* path :
       {"\xFF\xFE.py", "new\nline.py", "tab\t", " leading", "Z", "a", "\xC3\xA9", "a-b", "d/b",
        "a.b", "-dash", "*star", "back\\slash", "[x]", "quo\"te"}) {
    repo(std::string("dir ") + path);
  }
  repo(".gitignore", "dir \\*star\ndir back\\\\slash\ndir \\[x]\n");
  expect_as_git();
}

TEST_F(GitWalk, ReadsEveryFormOfTheIndex) {
  repo(".gitignore", "*.log\n");
  for (const char* path :
       {"a/b/one.log", "a/b/two.log", "a/c.log", "long-name-of-a-file.log", "z"}) {
    repo(path);
  }
  git("add -f . && git rm -q --cached z && git add -N z");
  for (const char* form : {"2", "3", "4"}) {
    git(std::string("update-index --index-version ") + form);
    expect_as_git();
    expect_as_git("repo/a");
  }
  git("update-index --split-index");
  EXPECT_EQ(walk_in(scratch_ / "repo").skipped[skipped::kGitUnreadable], 1U);

  scratch_.run("git init -q --object-format=sha256 long && cd long && touch a b && git add a");
  expect_as_git("long");
}

TEST_F(GitWalk, ReadsASparseIndex) {
  for (const char* path : {"in/a", "out/b", "out/deep/c", "d"}) repo(path);
  git("add . && git -c user.name=n -c user.email=e commit -q -m x && "
      "git sparse-checkout set --sparse-index in");
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo")), ElementsAre("d", "in/a"));
}

TEST_F(GitWalk, ReadsALinkedWorkTree) {
  repo("a");
  git("add a && git -c user.name=n -c user.email=e commit -q -m x && git worktree add -q "
      "../linked");
  scratch_.write("linked/new");
  EXPECT_THAT(paths_of(walk_in(scratch_ / "linked")), ElementsAre("a", "new"));
}

// An index of version 4 whose paths each repeat the one before it, and are one byte longer.
std::string growing_index(std::uint32_t entries) {
  std::string index = "DIRC";
  for (const std::uint32_t number : {4U, entries}) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) index += static_cast<char>(number >> shift);
  }
  for (std::uint32_t i = 0; i < entries; ++i)
    index += std::string(62, '\1') + std::string("\0x\0", 3);
  return index + std::string(20, '\0');
}

TEST_F(GitWalk, FallsBackToAPlainWalkWhereGitDataIsDamaged) {
  repo("a.py");
  repo("node_modules/b.js");
  git("add -f .");
  const std::string index = scratch_.read("repo/.git/index");
  const std::string damages[] = {"", "DIRC", index.substr(0, index.size() / 2),
                                 "DIRC\xFF\xFF\xFF\xFF" + index.substr(8), growing_index(3000)};
  for (const std::string& damage : damages) {
    scratch_.write("repo/.git/index", damage);
    const WalkResult result = walk_in(scratch_ / "repo");
    EXPECT_EQ(result.skipped[skipped::kGitUnreadable], 1U);
    EXPECT_THAT(paths_of(result), ElementsAre("a.py"));
  }
  scratch_.write("repo/.git/index", index);
  scratch_.write("repo/.git/config", "[core\n");
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo")), ElementsAre("a.py"));
  scratch_.remove("repo/.git/HEAD");
  const WalkResult result = walk_in(scratch_ / "repo");
  EXPECT_THAT(paths_of(result), ElementsAre("a.py"));
  EXPECT_EQ(result.skipped[skipped::kGitUnreadable], 1U);
}

TEST_F(GitWalk, RunsNothingThatTheConfigurationNames) {
  repo("a.py", "x");
  git("add a.py");
  const std::string trap = "touch " + (scratch_ / "ran").native();
  git("config core.fsmonitor '" + trap + "'");
  git("config filter.trap.clean '" + trap + "' && git config filter.trap.smudge '" + trap + "'");
  repo(".gitattributes", "* filter=trap\n");
  repo("a.py", "changed");
  EXPECT_THAT(paths_of(walk_in(scratch_ / "repo")), ElementsAre(".gitattributes", "a.py"));
  EXPECT_FALSE(std::filesystem::exists(scratch_ / "ran"));
}

// As git does, whose own word is asked, too.
TEST_F(GitWalk, DoesNotObeyAnotherUsersDataInAFolderAbove) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  const ScopedVariable caller("SUDO_UID", nullptr);
  repo(".gitignore", "ignored\n");
  repo("sub/ignored");
  EXPECT_EQ(paths_of(walk_in(scratch_ / "repo/sub")), Paths());
  for (const char* foreign : {"repo", "repo/.git"}) {
    ASSERT_EQ(::chown((scratch_ / foreign).c_str(), 65534, 65534), 0);
    scratch_.run("cd repo/sub && ! git status");
    const WalkResult result = walk_in(scratch_ / "repo/sub");
    EXPECT_EQ(paths_of(result), Paths{"ignored"}) << foreign;
    EXPECT_EQ(result.skipped[skipped::kGitForeign], 1U);
    ASSERT_EQ(::chown((scratch_ / foreign).c_str(), 0, 0), 0);
  }
  ASSERT_EQ(::chown((scratch_ / "repo").c_str(), 65534, 65534), 0);
  const ScopedVariable settings("GIT_CONFIG_GLOBAL", (scratch_ / "settings").c_str());
  for (const std::string& safe :
       {(scratch_ / "repo").native(), std::string("*"), scratch_.path().native() + "/*"}) {
    scratch_.write("settings", "[safe]\ndirectory = " + safe + "\n");
    EXPECT_EQ(paths_of(walk_in(scratch_ / "repo/sub")), Paths()) << safe;
  }
  scratch_.write("settings", "[safe]\ndirectory = *\ndirectory =\n");
  EXPECT_EQ(paths_of(walk_in(scratch_ / "repo/sub")), Paths{"ignored"});
  EXPECT_EQ(paths_of(walk_in(scratch_ / "repo")), Paths{".gitignore"}) << "named by the user";
}

TEST_F(GitWalk, FollowsNoLinkInGitsData) {
  scratch_.write("outside/exclude", "a.py\n");
  repo("a.py");
  scratch_.run("rm -rf repo/.git/info && ln -s ../../outside repo/.git/info");
  EXPECT_EQ(paths_of(walk_in(scratch_ / "repo")), Paths{"a.py"});
  scratch_.run(
      "rm repo/.git/info && mkdir repo/.git/info && "
      "ln -s ../../../outside/exclude repo/.git/info/exclude");
  EXPECT_EQ(paths_of(walk_in(scratch_ / "repo")), Paths{"a.py"});
}

TEST(PlainWalk, SkipsDependenciesAndCaches) {
  Scratch scratch;
  for (const char* path : {"a.py", ".github/x.yml", "node_modules/m/i.js", "pkg/node_modules/i.js",
                           ".venv/x.py", "env/pyvenv.cfg", "env/lib.py", "target/out.rs",
                           "crate/Cargo.toml", "crate/target/out.rs", "java/com/target/T.java",
                           "a/__pycache__/x", ".hg/store", "cache/CACHEDIR.TAG", "cache/x"}) {
    scratch.write(path);
  }
  const WalkResult result = walk_in(scratch.path());
  EXPECT_THAT(paths_of(result),
              ElementsAre(".github/x.yml", "a.py", "crate/Cargo.toml", "java/com/target/T.java"));
  EXPECT_EQ(result.skipped[skipped::kFolder], 7U);
  EXPECT_EQ(result.skipped[skipped::kThirdParty], 2U);
  EXPECT_THAT(paths_of(walk_in(scratch / "cache")), ElementsAre("CACHEDIR.TAG", "x"));
}

TEST(PlainWalk, ReachesWhatLiesDeeperThanAPathMayBeLong) {
  Scratch scratch;
  const std::string step = std::string(200, 'd');
  FileDescriptor at(::open(scratch.path().c_str(), O_PATH));
  for (int level = 0; level < 30; ++level) {
    ::mkdirat(at.get(), step.c_str(), 0700);
    at = FileDescriptor(::openat(at.get(), step.c_str(), O_PATH));
  }
  const FileDescriptor file(::openat(at.get(), "f.py", O_CREAT | O_WRONLY, 0600));
  const WalkResult result = walk_in(scratch.path());
  ASSERT_EQ(result.files.size(), 1U);
  EXPECT_EQ(result.files.front().path.size(), 30 * 201 + 4U);
}

TEST(PlainWalk, NamesARootThatIsNone) {
  Scratch scratch;
  scratch.write("file");
  for (const char* path : {"missing", "file"}) {
    try {
      walk_in(scratch / path);
      ADD_FAILURE() << path;
    } catch (const Error& error) {
      EXPECT_THAT(error.what(), HasSubstr((scratch / path).native()));
    }
  }
  EXPECT_TRUE(walk_in(scratch / ".").skipped.empty());
}

TEST(PlainWalk, StopsWhenAsked) {
  Scratch scratch;
  const StopFlag stop = true;
  EXPECT_THROW(walk(RootDirectory(scratch.path()), {.excluded = {}, .stop = &stop}), StopRequest);
}

}  // namespace
}  // namespace kestrix::index
