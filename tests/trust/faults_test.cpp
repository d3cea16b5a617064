// What a disk, a limit or another process can do while the index is at work. Afterwards the last
// complete index answers, or is rebuilt.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
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
constexpr FullDiskCase kLimit{"Limit", "trap '' XFSZ; ulimit -f 100"};
constexpr FullDiskCase kMount{"Mount", R"(unshare -m true 2> no-mounts || exit 77
unshare -m sh -c '
  mkdir -p full && mount -t tmpfs -o size=160k full full || exit 77
  cp i.db full/ && ln -s full/i.db link && mv link i.db
  "$@"; code=$?
  rm i.db; cp full/i.db* . ; exit $code' sh "$@"; exit $?)"};

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
  for (const int mebibytes : {20, 40, 60, 80, 100, 140, 200}) {
    program.before = "ulimit -v " + std::to_string(mebibytes * 1024);
    program.run(kSymbols);
  }
  program.before.clear();
  EXPECT_EQ(program.run(kSymbols).out, answer_of_a_fresh_index(program));
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
