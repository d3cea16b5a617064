// A repository can't make the program look outside its root, run anything, or write anywhere but
// into the index. The files outside are watched: not even opening one goes unnoticed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

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
