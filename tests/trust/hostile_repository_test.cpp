// Repositories made to break a reader. Each run ends by itself, answers, and holds its memory.

#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using testing::HasSubstr;

constexpr std::array kExtensions{".py", ".js", ".ts",  ".tsx", ".java", ".kt", ".go",
                                 ".rs", ".c",  ".cpp", ".h",   ".cs",   ".rb", ".php"};

std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

void make_links(const FreshDirectory& repo) {
  const auto& top = repo.path() / "repo";
  std::filesystem::create_directories(top / "a/b");
  std::filesystem::create_symlink(".", top / "self");
  std::filesystem::create_symlink("../..", top / "a/b/up");
  std::filesystem::create_symlink("/etc", top / "etc");
  std::filesystem::create_symlink("/etc/passwd", top / "passwd.py");
  std::filesystem::create_symlink("nowhere", top / "dangling.py");
}

void make_special_files(const FreshDirectory& repo) {
  repo.write("repo/real.py", "x = 1\n");
  const auto top = repo.path() / "repo";
  ASSERT_EQ(mkfifo((top / "fifo.py").c_str(), 0600), 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const auto path = top / "s.py";
  ASSERT_LT(path.native().size(), sizeof address.sun_path);
  path.native().copy(address.sun_path, sizeof address.sun_path - 1);
  const int socket_fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(socket_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  close(socket_fd);
}

void make_odd_names(const FreshDirectory& repo) {
  for (const std::string& name :
       {std::string("new\nline"), std::string("tab\t\x01\x7f"), std::string("\xff\xfe\xc3"),
        std::string(252, 'n'), std::string(" "), std::string("-rf"), std::string("\"quoted\\")}) {
    repo.write("repo/" + name + ".py", "class OddError(Exception): pass\n");
  }
}

void make_depth(const FreshDirectory& repo) {
  std::filesystem::create_directory(repo.path() / "repo");
  int folder = open((repo.path() / "repo").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(mkdirat(folder, "d", 0700), 0);
    const int next = openat(folder, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    close(folder);
    folder = next;
  }
  const int file = openat(folder, "deep.py", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  EXPECT_EQ(write(file, "x=1\n", 4), 4);
  close(file);
  close(folder);
}

void make_crowd(const FreshDirectory& repo) {
  std::filesystem::create_directory(repo.path() / "repo");
  const int folder = open((repo.path() / "repo").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (int i = 0; i < 50000; ++i) {
    const std::string name = "f" + std::to_string(i) + ".txt";
    close(openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  }
  close(folder);
}

void make_giants(const FreshDirectory& repo) {
  repo.write("repo/zeros.py", "");
  std::filesystem::resize_file(repo.path() / "repo/zeros.py", std::uintmax_t{1} << 30U);
  repo.write("repo/line.js", "var a=[" + repeated("1,", 25'000'000) + "1]");
  repo.write("repo/text.py", repeated("x = 1\n", 400'000));
  std::filesystem::resize_file(repo.path() / "repo/text.py", std::uintmax_t{1} << 30U);
}

void make_nesting(const FreshDirectory& repo) {
  for (const char* extension : kExtensions) {
    const std::string name = std::string("repo/n") + extension;
    for (const auto& [kind, open_text] :
         {std::pair("brace", "{\n"), {"paren", "(\n"}, {"call", "f([\n"}, {"type", "a<\n"}}) {
      repo.write(name + "." + kind + extension, repeated(open_text, 16384));
    }
  }
  repo.write("repo/if.py", [] {
    std::string text;
    for (int i = 0; i < 700; ++i) text += repeated(" ", static_cast<std::size_t>(i)) + "if x:\n";
    return text;
  }());
}

// Every grammar is fed every other language's text, and bytes that are no text at all.
void make_mixtures(const FreshDirectory& repo) {
  const std::array<std::string, 8> texts{
      "from . import (a,\nclass A(B: pass\n\"\"\"",
      "import {a, b} from './x';\nexport * from\nclass {`${",
      "package a.b; import static x.*; class A<T extends { /*",
      "package main\nimport (\n\"x\"\nfunc (",
      "#[path=\"\nmod a; use a::{b::{c, d}, self}; r#\"",
      "#include \"\n#define X \\\n\\\n template<class T> struct { = 0",
      "<?php namespace A; use B\\{C, D}; require 'x' . __DIR__; <<<EOT\n",
      std::string("nul\0in the text\xff\xfe\x80", 18)};
  // Behind what is looked at to tell text from the rest.
  const std::string late = std::string(8192, ' ') + "class A {}\n" + std::string(5000, '\0') + "{}";
  for (const char* extension : kExtensions) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      repo.write("repo/m" + std::to_string(i) + extension, repeated(texts[i], 50));
    }
    repo.write(std::string("repo/late") + extension, late);
  }
}

std::string each(int count, const std::function<std::string(int)>& piece) {
  std::string all;
  for (int i = 0; i < count; ++i) all += piece(i) + "\n";
  return all;
}

void make_circles(const FreshDirectory& repo) {
  constexpr int kFiles = 8'000;
  for (int i = 0; i < kFiles; ++i) {
    repo.write(fmt::format("repo/m{}.py", i),
               fmt::format("from m{} import *\nfrom m{} import *\nz{}()\n", (i + 1) % kFiles,
                           (7 * i + 1) % kFiles, i));
    repo.write(fmt::format("repo/C{}.java", i),
               fmt::format("class C{} extends C{} implements C{} {{ void m() {{ z(); }} }}\n", i,
                           (i + 1) % kFiles, (7 * i + 1) % kFiles));
  }
}

// Of one thing many, each times many of another.
void make_products(const FreshDirectory& repo) {
  repo.write("repo/go.mod", "module m\n");
  repo.write("repo/i.go", "package m\n" + each(5'000, [](int i) {
                            return fmt::format("type I{} interface {{ M() }}", i);
                          }));
  repo.write("repo/t.go", "package m\n" + each(5'000, [](int i) {
                            return fmt::format("type T{0} struct{{}}\nfunc (T{0}) M() {{}}", i);
                          }));
  repo.write("repo/b.ts",
             each(80'000, [](int i) { return fmt::format("export const c{} = 1;", i); }));
  for (int i = 0; i < 2'000; ++i) {
    repo.write(fmt::format("repo/a{}.ts", i), "export * from './b'\n");
    repo.write(fmt::format("repo/p/f{}.go", i), "package p\nimport _ \"m/q\"\n");
    repo.write(fmt::format("repo/q/f{}.go", i), "package q\n");
  }
  repo.write("repo/a.c", repeated("#include \"a.h\"\n", 20'000) +
                             each(40'000, [](int i) { return fmt::format("u{}();", i); }));
  repo.write("repo/a.h", each(40'000, [](int i) { return fmt::format("void u{}(void);", i); }));
}

// Two ways to each next module, and circles of them.
void make_modules(const FreshDirectory& repo) {
  const auto twice = [](int i) {
    return fmt::format("#[path = \"f{0}.rs\"] mod x;\n#[path = \"f{0}.rs\"] mod y;\n", i);
  };
  repo.write("repo/src/lib.rs", twice(0));
  for (int i = 0; i < 500; ++i) repo.write(fmt::format("repo/src/f{}.rs", i), twice((i + 1) % 400));
}

// What is read beside sources: project files and git's own data.
void make_odd_data(const FreshDirectory& repo) {
  repo.write("repo/a.ts", "import {b} from 'b';\n");
  std::string crowd = "{\"a\": 1";
  for (int i = 0; crowd.size() < 15'000'000; ++i) crowd += ",\"k" + std::to_string(i) + "\":1";
  repo.write("repo/package.json", crowd + "}");
  repo.write("repo/tsconfig.json", repeated("[", 15'000'000));
  repo.write("repo/jsconfig.json", "{\"a\":[" + repeated("[],", 5'000'000) + "1]}");
  const std::string many = repeated("\"p*/*\",", 250'000) + "\"q\"";
  repo.write("repo/many/package.json", "{\"workspaces\":[" + many + "]}");
  repo.write("repo/many/tsconfig.json", R"({"compilerOptions":{"paths":{"*":[)" + many + "]}}}");
  repo.write("repo/many/a.ts", repeated("import 'x';\n", 20'000));
  repo.write("repo/many/q/package.json",
             R"({"name":"q","exports":{"./*":")" + std::string(90'000, '*') + "\"}}");
  repo.write("repo/many/q/a.ts", "import 'q/" + std::string(90'000, 'a') + "';\n");
  repo.write("repo/a.c", repeated("#include \"x.h\"\n#include <y/z.h>\n", 4'000));
  std::string command = R"([{"directory": ".", "file": "a.c", "arguments": [")";
  for (int i = 0; i < 300'000; ++i) command += "-Id" + std::to_string(i) + "\",\"";
  repo.write("repo/compile_commands.json", command + "\"]}]");
  repo.write("repo/b/compile_commands.json", repeated("[", 15'000'000));
  repo.write("repo/.git/HEAD", "ref: refs/heads/main\n");
  repo.write("repo/.git/objects/x", "");
  repo.write("repo/.git/refs/x", "");
  repo.write("repo/.git/config", repeated("[include]\npath = config\n", 1000));
  repo.write("repo/.git/index", "DIRC");
  std::filesystem::resize_file(repo.path() / "repo/.git/index", (std::uintmax_t{1} << 30U) - 1);
}

struct HostileCase {
  const char* name;
  std::function<void(const FreshDirectory&)> make;
  const char* told;  ///< a line of the figures

  friend void PrintTo(const HostileCase& hostile, std::ostream* out) { *out << hostile.name; }
};

class HostileRepository : public testing::TestWithParam<HostileCase> {};

TEST_P(HostileRepository, IsIndexedWithinItsMemory) {
  ProgramUnderTest program;
  GetParam().make(program.directory());
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  program.before = "ulimit -t 20";  // seconds of processor time
#endif
  const Ended index = program.run({"index", "repo", "--index", "i.db"});
  ASSERT_EQ(index.code, 0) << index.err;
  EXPECT_THAT(index.out, HasSubstr(GetParam().told));
  const Ended pages = program.run({"pages", "repo", "--index", "i.db"});
  EXPECT_EQ(pages.code, 0) << pages.err;
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  EXPECT_LT(std::max(index.peak_kib, pages.peak_kib), 400 * 1024);
#endif
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileRepository,
    testing::Values(HostileCase{"Links", make_links, "files        0\n"},
                    HostileCase{"SpecialFiles", make_special_files, "files        1\n"},
                    HostileCase{"OddNames", make_odd_names, "class        7\n"},
                    HostileCase{"Depth", make_depth, "files        1\n"},
                    HostileCase{"Crowd", make_crowd, "files        50000\n"},
                    HostileCase{"Giants", make_giants, "left out\n"},
                    HostileCase{"Nesting", make_nesting, "files        57\n"},
                    HostileCase{"Circles", make_circles, "files        16000\n"},
                    HostileCase{"Products", make_products, "leads too far"},
                    HostileCase{"Modules", make_modules, "leads too far"},
                    HostileCase{"Mixtures", make_mixtures, "binary file"},
                    HostileCase{"OddData", make_odd_data, "git data that"}),
    [](const auto& test) { return test.param.name; });

// Nothing is opened by its absolute path, which may be longer than the system takes.
TEST(HostileRepository, MayLieAsDeepAsItsOwnPathGoes) {
  const ProgramUnderTest program;
  std::string deep = "deep";
  while (program.path().native().size() + deep.size() < 3'800) deep += "/" + std::string(100, 'r');
  std::string inner = "src";
  for (int i = 0; i < 10; ++i) inner += "/" + std::string(90, 'd');
  for (const std::string& root : {std::string("repo"), deep}) {
    const std::string path = root + "/" + inner;
    if ((program.path() / path).native().size() > 4'000) {
      std::filesystem::create_directories(program.path() / root);
      const auto before = std::filesystem::current_path();
      std::filesystem::current_path(program.path() / root);
      std::filesystem::create_directories(inner);
      std::filesystem::copy_file(program.path() / "repo" / inner / "e.py", inner + "/e.py");
      std::filesystem::current_path(before);
    } else {
      program.directory().write(path + "/e.py", "class DeepError(Exception): pass\n");
    }
    program.directory().write(root + "/go.mod", "module m\n");
    program.directory().write(root + "/a/a.go", "package a\nimport \"m/b\"\nvar A = b.B\n");
    program.directory().write(root + "/b/b.go", "package b\nvar B = 1\n");
  }
  for (const char* answer : {"edges", "symbols", "pages"}) {
    const bool pages = std::string_view(answer) == "pages";
    const auto ask = [&](const std::string& root, const std::string& index) {
      std::vector<std::string> arguments{answer, root, "--index", index};
      if (pages) arguments.emplace_back("--paths");
      return program.run(arguments);
    };
    const Ended near = ask("repo", "near.db");
    const Ended far = ask(deep, "far.db");
    EXPECT_EQ(far.code, 0) << far.err;
    EXPECT_EQ(far.out, near.out);
    EXPECT_THAT(far.out, HasSubstr(pages                                 ? "e.py"
                                   : std::string_view(answer) == "edges" ? "b/b.go"
                                                                         : "DeepError"));
  }
}

TEST(HostileRepository, MayChangeWhileItIsRead) {
  const ProgramUnderTest program;
  std::atomic<bool> done = false;
  program.directory().write("repo/stays.py", "class StaysError(Exception): pass\n");
  std::thread restless([&] {
    for (unsigned i = 0; !done; ++i) {
      const std::string name = "repo/d" + std::to_string(i % 50) + "/f.py";
      std::error_code ignored;
      if (i % 3 == 0) std::filesystem::remove_all((program.path() / name).parent_path(), ignored);
      if (i % 3 != 0) program.directory().write(name, repeated("import stays\n", i % 900 + 1U));
    }
  });
  for (int i = 0; i < 20; ++i) {
    const Ended ended =
        program.run({"pages", "repo", "--paths", "--page", "errors", "--index", "i.db"});
    EXPECT_EQ(ended.code, 0) << ended.err;
    EXPECT_EQ(ended.out, "stays.py\n");
  }
  done = true;
  restless.join();
}

// Root reads everything, so there the program runs as nobody.
void drop_privileges(ProgramUnderTest& program) {
  constexpr uid_t kNobody = 65534;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(program.path())) {
    ASSERT_EQ(lchown(entry.path().c_str(), kNobody, kNobody), 0);
  }
  ASSERT_EQ(chown(program.path().c_str(), kNobody, kNobody), 0);
  program.before = "exec setpriv --reuid 65534 --regid 65534 --clear-groups \"$@\"";
}

TEST(HostileRepository, MayHoldWhatItsUserCannotRead) {
  using std::filesystem::perms;
  ProgramUnderTest program;
  for (const char* path : {"repo/a.py", "repo/secret.py", "repo/closed/b.py"}) {
    program.directory().write(path, "x = 1\n");
  }
  if (geteuid() == 0) drop_privileges(program);
  std::filesystem::permissions(program.path() / "repo/secret.py", perms::none);
  std::filesystem::permissions(program.path() / "repo/closed", perms::none);
  const Ended ended = program.run({"index", "repo", "--index", "i.db"});
  std::filesystem::permissions(program.path() / "repo/closed", perms::owner_all);
  if (ended.code == 126) GTEST_SKIP() << "nobody may not run the program here";
  EXPECT_EQ(ended.code, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("files        1\n"));
  EXPECT_THAT(ended.out, HasSubstr("unreadable file "));
}

}  // namespace
}  // namespace kestrix::program
