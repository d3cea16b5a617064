// A repository can't make the program look outside its root, run anything, or write anywhere but
// into the index. The files outside are watched: not even opening one goes unnoticed.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "apps/page_sources/arguments.h"
#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Tells whether anything in a directory was opened.
class Watch {
 public:
  explicit Watch(const std::filesystem::path& directory)
      : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    inotify_add_watch(events_, directory.c_str(), IN_OPEN | IN_ACCESS | IN_MODIFY | IN_CREATE);
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() { close(events_); }

  bool tripped() const {
    std::array<char, 4096> buffer{};
    return read(events_, buffer.data(), buffer.size()) > 0;
  }

 private:
  int events_;
};

using Files = std::vector<std::pair<std::string, std::string>>;

// "@" stands for the absolute path of the directory outside.
Files escapes() {
  return {
      {"tsconfig.json",
       R"({"extends": "../outside/tsconfig.json", "compilerOptions": {"baseUrl": "../outside",
           "paths": {"secret": ["../outside/secret.ts", "@/secret.ts"], "x/*": ["../../outside/*"]}}})"},
      {"package.json",
       R"({"workspaces": ["../outside"], "imports": {"#s": "../outside/secret.ts"},
           "exports": "../outside/secret.ts", "main": "@/secret.ts"})"},
      {"src/a.ts",
       "import {Secret} from 'secret';\nimport s from '#s';\nimport t from 'x/secret';\n"
       "import u from '../../outside/secret';\nconst v = require('@/secret');\n"},
      {"go.mod", "module a\nreplace b => ../outside\n"},
      {"go.work", "use ../outside\n"},
      {"m.go", "package a\nimport \"b\"\nvar _ = b.Secret{}\n"},
      {"src/lib.rs", "#[path = \"../../outside/secret.rs\"]\nmod secret;\nuse secret::Secret;\n"},
      {"Cargo.toml", "[workspace]\nmembers = [\"../outside\"]\n[lib]\npath = \"@/secret.rs\"\n"},
      {"m.c", "#include \"../outside/secret.h\"\n#include \"@/secret.h\"\n#include <@/secret.h>\n"},
      {"compile_commands.json",
       R"([{"directory": "@", "file": "secret.c", "command": "cc -I@ -I../outside secret.c"}])"},
      {"composer.json", R"({"autoload": {"psr-4": {"S\\": ["../outside/", "@/"]}}})"},
      {"m.php", "<?php use S\\Secret; require '../outside/secret.php'; require '@/secret.php';\n"},
      {"m.csproj", R"(<Project><Import Project="../outside/secret.props"/><ItemGroup>
           <ProjectReference Include="../outside/secret.csproj"/>
           <Compile Include="..\outside\secret.cs"/></ItemGroup></Project>)"},
      {"m.cs", "using static Secret;\nclass M { void f() { new SecretError(); } }\n"},
      {"m.rb", "require_relative '../outside/secret'\nrequire '@/secret'\n"},
      {"m.py", "from ..outside import secret\nfrom ...outside.secret import Secret\n"},
      {".gitignore", "!../outside\n"},
      {".gitattributes", "*.py filter=evil\n"},
  };
}

std::string with_path(std::string text, const std::string& path) {
  for (auto at = text.find('@'); at != std::string::npos; at = text.find('@', at + path.size())) {
    text.replace(at, 1, path);
  }
  return text;
}

TEST(Isolation, NothingOutsideTheRootIsOpened) {
  const ProgramUnderTest program;
  const auto outside = program.path() / "outside";
  for (const char* name :
       {"secret.ts", "secret.rs", "secret.h", "secret.c", "secret.php", "secret.rb", "secret.py",
        "secret.cs", "secret.csproj", "secret.props", "secret.go", "tsconfig.json", "package.json",
        "go.mod", "Cargo.toml", "lib.rs"}) {
    program.directory().write(std::string("outside/") + name, "class SecretError {}\n");
  }
  for (const auto& [path, text] : escapes()) {
    program.directory().write("repo/" + path, with_path(text, outside));
  }
  std::filesystem::create_symlink(outside / "secret.py", program.path() / "repo/linked.py");
  std::filesystem::create_directory_symlink(outside, program.path() / "repo/folder");
  const Watch watch(outside);
  for (const char* subcommand : {"index", "edges", "symbols", "pages"}) {
    const Ended ended = program.run({subcommand, "repo", "--index", "i.db"});
    EXPECT_EQ(ended.code, 0) << ended.err;
    EXPECT_THAT(ended.out, Not(HasSubstr("outside"))) << subcommand;
    EXPECT_THAT(ended.out, Not(HasSubstr("SecretError"))) << subcommand;
  }
  EXPECT_FALSE(watch.tripped());
  EXPECT_EQ(read_file(outside / "secret.py"), "class SecretError {}\n");
  EXPECT_TRUE(watch.tripped()) << "the watch itself works";
}

// Git itself runs what these name; the program must not, nor open what they name outside.
TEST(Isolation, NothingThatGitsDataNamesIsRunOrOpened) {
  ProgramUnderTest program;
  const std::string outside = program.path() / "outside";
  const std::string trap = outside + "/trap.sh";
  program.directory().write("outside/trap.sh", "#!/bin/sh\ntouch sprung\n");
  program.directory().write("outside/names", "a.py\n");
  std::filesystem::permissions(trap, std::filesystem::perms::owner_all);
  program.directory().write("repo/a.py", "class AError(Exception): pass\n");
  program.directory().write("repo/.gitattributes", "* filter=trap diff=trap\n");
  program.before = "cd repo && git init -q . && git add . && cd .. ; cp " + trap +
                   " repo/.git/hooks/post-index-change; \"$@\"; exit";
  ASSERT_EQ(program.run({"index", "repo", "--index", "i.db"}).code, 0);
  program.before.clear();
  std::ofstream(program.path() / "repo/.git/config", std::ios::app) << with_path(
      "[core]\nfsmonitor = @/trap.sh\nhooksPath = @\npager = @/trap.sh\n"
      "excludesFile = @/names\nattributesFile = @/names\n[include]\npath = @/names\n"
      "[includeIf \"gitdir:**\"]\npath = ../../outside/names\n"
      "[filter \"trap\"]\nclean = @/trap.sh\nsmudge = @/trap.sh\nprocess = @/trap.sh\n"
      "[diff \"trap\"]\ntextconv = @/trap.sh\n",
      outside);
  program.directory().write("repo/a.py", "class BError(Exception): pass\n");
  const Watch watch(outside);
  for (const char* subcommand : {"index", "symbols", "pages"}) {
    const Ended ended = program.run({subcommand, "repo", "--index", "i.db"});
    EXPECT_EQ(ended.code, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr(subcommand == std::string("symbols") ? "BError" : ""))
        << ended.out;
  }
  EXPECT_FALSE(watch.tripped());
  program.before = "cd repo; git status >/dev/null 2>&1; \"$@\"; exit";
  program.run({"--version"});
  EXPECT_TRUE(watch.tripped()) << "git itself springs the trap";
}

/// Swaps a file or folder for a link that leads out, and back, as fast as it can.
class Swapping {
 public:
  Swapping(std::filesystem::path place, const std::filesystem::path& target)
      : place_(std::move(place)), link_(place_.native() + ".link") {
    std::filesystem::create_symlink(target, link_);
    thread_ = std::jthread([this](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        renameat2(AT_FDCWD, place_.c_str(), AT_FDCWD, link_.c_str(), RENAME_EXCHANGE);
      }
    });
  }

 private:
  std::filesystem::path place_;
  std::filesystem::path link_;
  std::jthread thread_;
};

struct SwapCase {
  const char* name;
  const char* place;
  const char* target;
};

class Swap : public testing::TestWithParam<SwapCase> {};

// Whatever takes a folder's or a file's place, and whenever it does.
TEST_P(Swap, NeverLeadsOutOfTheRoot) {
  ProgramUnderTest program;
  for (int i = 0; i < 40; ++i) {
    const std::string file = "m" + std::to_string(i) + ".py";
    const std::string fields = "@dataclass\nclass A" + std::to_string(i) + "Error:\n  x: int\n";
    program.directory().write("repo/pkg/" + file, "import pkg.m1\n" + fields + fields);
    program.directory().write("outside/" + file, "class SecretError(Exception): pass\n");
  }
  for (const char* file : {"exclude", "config", "HEAD", "index", "tsconfig.json", "go.mod"}) {
    program.directory().write(std::string("outside/") + file, "pkg/m7.py\n");
    program.directory().write(std::string("repo/pkg/") + file, "{}\n");
  }
  program.directory().write("repo/go.mod", "module a\n");
  program.directory().write("repo/pkg/a.ts", "import './b'\n");
  program.directory().write("repo/pkg/b.go", "package pkg\n");
  program.before =
      "cd repo && git init -q . && git add pkg/m1.py && mkdir -p .git/info && "
      "touch .git/info/exclude && cd .. ; \"$@\"; exit";
  ASSERT_EQ(program.run({"index", "repo", "--index", "i.db"}).code, 0);
  program.before.clear();
  const Watch watch(program.path() / "outside");
  const Swapping swapping(program.path() / "repo" / GetParam().place,
                          program.path() / GetParam().target);
  std::vector<std::vector<std::string>> runs{{"index"}, {"symbols"}, {"edges"}, {"pages"}};
  for (const Page& page : kPages) runs.push_back({"pages", "--page", std::string(page.name)});
  for (int round = 0; round < 4; ++round) {
    for (auto run : runs) {
      run.insert(run.end(), {"repo", "--quiet", "--index", "i.db"});
      const Ended ended = program.run(run);
      EXPECT_EQ(ended.code, 0) << ended.err;
      EXPECT_THAT(ended.out, Not(HasSubstr("SecretError")));
    }
  }
  EXPECT_FALSE(watch.tripped());
}

INSTANTIATE_TEST_SUITE_P(All, Swap,
                         testing::Values(SwapCase{"Folder", "pkg", "outside"},
                                         SwapCase{"File", "pkg/m3.py", "outside/m3.py"},
                                         SwapCase{"ProjectFile", "go.mod", "outside/go.mod"},
                                         SwapCase{"GitFolder", ".git/info", "outside"},
                                         SwapCase{"GitFile", ".git/config", "outside/config"},
                                         SwapCase{"GitIndex", ".git/index", "outside/index"}),
                         [](const auto& test) { return test.param.name; });

TEST(Isolation, TheRepositoryIsNotWrittenTo) {
  const ProgramUnderTest program;
  program.directory().write("repo/a.py", "class AError(Exception): pass\n");
  const auto before = std::filesystem::last_write_time(program.path() / "repo");
  EXPECT_EQ(program.run({"pages", "repo"}).code, 0);
  EXPECT_EQ(std::filesystem::last_write_time(program.path() / "repo"), before);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(program.path() / "repo"), {}), 1);
}

}  // namespace
}  // namespace kestrix::program
