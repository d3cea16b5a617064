// What a disk, a limit or another process can do while the index is at work. Afterwards the last
// complete index answers, or is rebuilt.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

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

TEST(Faults, AFullDiskLeavesTheLastIndex) {
  ProgramUnderTest program;
  write_files(program, 0, 5);
  ASSERT_EQ(program.run(kSymbols).code, 0);
  write_files(program, 5, 600);
  program.before = "trap '' XFSZ; ulimit -f 100";
  const Ended full = program.run(kSymbols);
  EXPECT_EQ(full.code, 1);
  EXPECT_THAT(full.err, HasSubstr("i.db"));
  EXPECT_EQ(std::ranges::count(full.err, '\n'), 1) << full.err;
  program.before.clear();
  EXPECT_EQ(program.run(kSymbols).out, answer_of_a_fresh_index(program));
}

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
