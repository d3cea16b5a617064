// What a disk, a limit or another process can do while the index is at work. Afterwards the last
// complete index answers, or is rebuilt.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using testing::HasSubstr;

void write_files(const ProgramUnderTest& program, int first, int last) {
  for (int i = first; i < last; ++i) {
    program.directory().write("repo/p" + std::to_string(i % 7) + "/m" + std::to_string(i) + ".py",
                              "from p1 import m1\nclass C" + std::to_string(i) +
                                  "Error(Exception):\n    '''" + std::string(300, 'x') + "'''\n");
  }
}

const std::vector<std::string> kSymbols{"symbols", "repo", "--index", "i.db", "--quiet"};

std::string answer_of_a_fresh_index(const ProgramUnderTest& program) {
  const Ended ended = program.run({"symbols", "repo", "--index", "fresh.db", "--quiet"});
  std::filesystem::remove(program.path() / "fresh.db");
  return ended.out;
}

// Without room for what a refresh adds: a limit on the size of files, and a file system of its own
// that is full. The latter is there for this run alone, so the index is carried into it and out.
struct FullDiskCase {
  const char* name;
  const char* before;

  friend void PrintTo(const FullDiskCase& disk, std::ostream* out) { *out << disk.name; }
};
constexpr FullDiskCase kLimit{"Limit", "ulimit -f 100"};
constexpr FullDiskCase kMount{"Mount", R"(unshare -m true 2> no-mounts || exit 77
unshare -m sh -c '
  mkdir -p full && mount -t tmpfs -o size=160k full full || exit 77
  cp i.db full/ && ln -s ../repo full/repo && cd full
  "$@"; code=$?
  cd .. ; cp full/i.db* . ; exit $code' sh "$@"; exit $?)"};

class FullDisk : public testing::TestWithParam<FullDiskCase> {};

TEST_P(FullDisk, LeavesTheLastIndex) {
  ProgramUnderTest program;
  write_files(program, 0, 5);
  ASSERT_EQ(program.run(kSymbols).code, 0);
  write_files(program, 5, 600);
  program.before = GetParam().before;
  const Ended full = program.run(kSymbols);
  if (full.code == 77) GTEST_SKIP() << "no file system can be mounted here";
  EXPECT_EQ(full.code, 1);
  EXPECT_THAT(full.err, HasSubstr("i.db"));
  EXPECT_EQ(std::ranges::count(full.err, '\n'), 1) << full.err;
  program.before.clear();
  EXPECT_EQ(program.run(kSymbols).out, answer_of_a_fresh_index(program));
}

INSTANTIATE_TEST_SUITE_P(All, FullDisk, testing::Values(kLimit, kMount),
                         [](const auto& test) { return test.param.name; });

TEST(Faults, AKillAtAnyMomentLeavesAnIndexThatAnswers) {
  const ProgramUnderTest program;
  for (int round = 0; round < 12; ++round) {
    write_files(program, round * 60, (round + 1) * 60);
    program.run_and_signal(SIGKILL, kSymbols, std::chrono::milliseconds(3 * round));
  }
  EXPECT_EQ(program.run(kSymbols).out, answer_of_a_fresh_index(program));
}

TEST(Faults, TooLittleMemoryLeavesAnIndexThatAnswers) {
  ProgramUnderTest program;
  write_files(program, 0, 200);
  for (int mebibytes = 36; mebibytes < 80; mebibytes += 2) {
    program.before = "ulimit -v " + std::to_string(mebibytes * 1024);
    const Ended ended = program.run(kSymbols);
    EXPECT_TRUE(ended.code == 0 || ended.code == 1 || ended.code == 127)
        << mebibytes << ": " << ended.code << " " << ended.err;
    EXPECT_TRUE(ended.code == 0 || !ended.err.empty()) << mebibytes;
  }
  program.before.clear();
  EXPECT_EQ(program.run(kSymbols).out, answer_of_a_fresh_index(program));
}

TEST(Faults, TooFewDescriptorsEndTheRunWithALine) {
  ProgramUnderTest program;
  write_files(program, 0, 40);
  const std::string expected = answer_of_a_fresh_index(program);
  for (int most = 4; most < 16; ++most) {
    program.before = "ulimit -n " + std::to_string(most);
    const Ended ended = program.run(kSymbols);
    if (ended.code == 0)
      EXPECT_EQ(ended.out, expected) << most;
    else
      EXPECT_EQ(std::ranges::count(ended.err, '\n'), 1) << most << ": " << ended.err;
  }
  program.before.clear();
  EXPECT_EQ(program.run(kSymbols).out, expected);
}

// Every call that a run makes of the system fails once. What has run out ends the run or changes
// nothing, an interruption is no failure; what may pass is told, and made good by the next run.
class FailingCalls : public testing::TestWithParam<int> {};

TEST_P(FailingCalls, LeaveNothingWrongBehind) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers come before the library that makes calls fail";
#endif
  const int step = GetParam() == EIO ? 1 : 3;
  ProgramUnderTest program;
  const auto& directory = program.directory();
  directory.write("repo/go.mod", "module a.b/c\n");
  directory.write("repo/m.go", "package c\nimport \"a.b/c/d\"\nvar _ = d.D{}\n");
  directory.write("repo/d/d.go", "package d\ntype D struct{}\n");
  directory.write("repo/package.json", R"({"imports": {"#b": "./lib/b.ts"}})");
  directory.write("repo/a.ts", "import {B} from '#b';\nnew B();\n");
  directory.write("repo/lib/b.ts", "export class B {}\n");
  directory.write("repo/.gitignore", "ignored.py\n");
  directory.write("repo/ignored.py", "class Ignored: pass\n");
  program.before = "cd repo && git init -q . && git add -f d && cd .. ; \"$@\"; exit";
  const std::vector<std::string> edges{"edges", "repo", "--index", "i.db"};
  const std::string expected = program.run(edges).out;
  ASSERT_EQ(std::ranges::count(expected, '\n'), 2) << expected;
  program.before.clear();
  for (int call = 1;; call += step) {
    ASSERT_LT(call, 3000);
    std::filesystem::remove(program.path() / "i.db");
    program.environment["LD_PRELOAD"] = FAILING_CALLS;
    program.environment["FAIL_AT"] = std::to_string(call);
    program.environment["FAIL_ERRNO"] = std::to_string(GetParam());
    program.environment["FAIL_MARK"] = (program.path() / "mark").native();
    const Ended ended = program.run(edges);
    if (!std::filesystem::remove(program.path() / "mark")) break;
    if (ended.code != 0) {
      EXPECT_EQ(ended.code, 1) << call;
      EXPECT_EQ(std::ranges::count(ended.err, '\n'), 1) << call << ": " << ended.err;
    } else if (ended.out != expected) {
      EXPECT_EQ(GetParam(), EIO) << call;
      EXPECT_THAT(ended.err, HasSubstr("cannot be read")) << call;
    }
    program.environment.erase("LD_PRELOAD");
    EXPECT_EQ(program.run(edges).out, expected) << "after call " << call;
  }
}

INSTANTIATE_TEST_SUITE_P(Errors, FailingCalls, testing::Values(EMFILE, ENOMEM, EINTR, EIO));

TEST(Faults, ASignalEndsTheRunWithinASecondAndAHalf) {
  ProgramUnderTest program;
  write_files(program, 0, 3000);
  for (const int moment : {20, 60, 150, 300}) {
    const auto begin = std::chrono::steady_clock::now();
    const Ended ended =
        program.run_and_signal(SIGTERM, kSymbols, std::chrono::milliseconds(moment));
    EXPECT_TRUE(ended.code == 128 + SIGTERM || ended.code == 0) << ended.code;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(moment + 1500));
  }
}

TEST(Faults, WritersAndReadersAtOnceAgree) {
  const ProgramUnderTest program;
  write_files(program, 0, 300);
  const std::string expected = answer_of_a_fresh_index(program);
  const std::vector<std::vector<std::string>> runs(12, kSymbols);
  for (int round = 0; round < 3; ++round) {
    std::filesystem::remove(program.path() / "i.db");
    for (const Ended& ended : program.run_together(runs)) {
      EXPECT_EQ(ended.code, 0) << ended.err;
      EXPECT_EQ(ended.out, expected);
    }
  }
}

}  // namespace
}  // namespace kestrix::program
