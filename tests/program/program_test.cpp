// The real program in a fresh directory: what it writes, where, and how it ends.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/program/json_schema.h"
#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Strings = std::vector<std::string>;

const std::filesystem::path kSource = KESTRIX_SOURCE_DIR;

json pages_of(const Ended& ended) {
  EXPECT_EQ(ended.code, 0) << ended.err;
  return json::parse(ended.out);
}

void expect_one_line_error(const Ended& ended, int code, const std::string& named) {
  EXPECT_EQ(ended.code, code) << named;
  EXPECT_THAT(ended.out, IsEmpty()) << named;
  EXPECT_THAT(ended.err, StartsWith("page-sources: "));
  EXPECT_THAT(ended.err, HasSubstr(named));
  EXPECT_EQ(std::ranges::count(ended.err, '\n'), 1) << ended.err;
}

TEST(Program, WrongUsageIsOneLineAndTwo) {
  const ProgramUnderTest program;
  const std::vector<std::pair<Strings, std::string>> cases{
      {{}, "subcommand"},
      {{"simbols", "--kind", "class"}, "simbols is no subcommand"},
      {{"pages", "--page", "error"}, "data_models, configuration"},
      {{"pages", "--entry-points", "["}, "["},
      {{"pages", "--threads", "0"}, "--threads"},
      {{"pages", "a", "b"}, "b"},
      {{"edges", "--format", "text"}, "tsv, json, dot"},
      {{"symbols", "--kind", "x"}, "--kind"},
      {{"topic"}, "TITLE"},
  };
  for (const auto& [arguments, named] : cases) {
    expect_one_line_error(program.run(arguments), 2, named);
  }
}

TEST(Program, WorkThatFailsIsOneLineAndOne) {
  const ProgramUnderTest program;
  program.directory().write("file.py", "x = 1\n");
  program.directory().write("notes.txt", std::string(5000, 'n'));
  program.directory().write("repo/a.py", "x = 1\n");
  std::filesystem::create_directory(program.path() / "folder");
  const std::vector<std::pair<Strings, std::string>> cases{
      {{"pages", "nowhere"}, "nowhere"},
      {{"pages", "no\nwhere"}, "no\\nwhere"},
      {{"pages", ""}, ""},
      {{"pages", "file.py"}, "file.py"},
      {{"index", "repo", "--index", "notes.txt"}, "notes.txt"},
      {{"index", "repo", "--index", "folder"}, "folder"},
      {{"index", "repo", "--index", "file.py/i.db"}, "file.py"},
  };
  for (const auto& [arguments, named] : cases) {
    expect_one_line_error(program.run(arguments), 1, named);
  }
  EXPECT_EQ(read_file(program.path() / "notes.txt"), std::string(5000, 'n'));
}

TEST(Program, CacheDirectoryThatCannotBeWrittenIsNamed) {
  ProgramUnderTest program;
  program.directory().write("repo/a.py", "x = 1\n");
  for (const std::string cache : {"/dev/null/cache", "/proc/cache"}) {
    program.environment["XDG_CACHE_HOME"] = cache;
    expect_one_line_error(program.run({"pages", "repo"}), 1, cache);
  }
}

TEST(Program, NothingToAnswerIsAnEmptyAnswer) {
  const ProgramUnderTest program;
  std::filesystem::create_directory(program.path() / "empty");
  program.directory().write("prose/notes.md", "# Notes\n");
  const auto schema = json::parse(read_file(kSource / "docs/pages.schema.json"));
  for (const std::string repository : {"empty", "prose"}) {
    const auto answer = pages_of(program.run({"pages", repository, "--format", "json"}));
    EXPECT_THAT(schema_faults(schema, answer), IsEmpty());
    EXPECT_EQ(answer["pages"], json::parse(R"({
      "data_models": {"files": []}, "configuration": {"files": []},
      "errors": {"has_material": false, "files": []}, "flows": {"classes": []},
      "extending": {"files": []}, "examples": {"files": []}, "decisions": {"files": []}})"));
    EXPECT_EQ(program.run({"edges", repository}).out, "");
    EXPECT_EQ(program.run({"symbols", repository}).out, "");
  }
}

TEST(Program, InformationIsAnAnswer) {
  const ProgramUnderTest program;
  EXPECT_EQ(program.run({"--version"}).out.substr(0, 13), "page-sources ");
  const Ended help = program.run({"pages", "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_EQ(help.err, "");
  for (const auto* option : {"--page", "--entry-points", "--index", "--threads", "Examples:"}) {
    EXPECT_THAT(help.out, HasSubstr(option));
  }
}

TEST(Program, TopicNeedsNoRepository) {
  const ProgramUnderTest program;
  const Ended ended = program.run({"topic", "Order book", "a/book.py", "match.py", "b/book.ts"});
  EXPECT_EQ(ended.out, "Order book book match\n");
  EXPECT_EQ(ended.code, 0);
}

// A repository for the tests of output channels.
void write_small_repository(const ProgramUnderTest& program) {
  program.directory().write("repo/app/errors.py", "class AppError(Exception):\n    pass\n");
  program.directory().write("repo/app/main.py", "from app.errors import AppError\nAppError()\n");
}

TEST(Program, ReaderThatGoesAwayIsNoError) {
  const ProgramUnderTest program;
  write_small_repository(program);
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  close(ends[0]);
  const Ended ended = program.run_into(ends[1], {"pages", "repo"});
  close(ends[1]);
  EXPECT_EQ(ended.code, 0);
  EXPECT_EQ(ended.err, "");
}

TEST(Program, AnswerThatCannotBeWrittenIsAnError) {
  const ProgramUnderTest program;
  write_small_repository(program);
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  expect_one_line_error(program.run_into(full, {"pages", "repo"}), 1, "standard output");
  close(full);
}

TEST(Program, InterruptedRunEndsByTheSignalAndLeavesAUsableIndex) {
  const ProgramUnderTest program;
  for (int i = 0; i < 3000; ++i) {
    program.directory().write("repo/m" + std::to_string(i) + ".py",
                              "import m1\nclass C" + std::to_string(i) + "Error(m1.X): pass\n");
  }
  const Strings arguments{"symbols", "repo", "--threads", "1", "--name", "c7error"};
  const Ended stopped = program.run_and_signal(SIGINT, arguments);
  EXPECT_EQ(stopped.code, 128 + SIGINT);
  EXPECT_EQ(stopped.out, "");
  EXPECT_EQ(stopped.err, "");
  EXPECT_EQ(program.run(arguments).out, "m7.py\tclass\tC7Error\tclass C7Error(m1.X)\n");
}

TEST(Program, EveryPathCanBeReadBack) {
  const ProgramUnderTest program;
  program.directory().write("repo/caf\xe9\t\"\\.py", "class OddError(Exception):\n    pass\n");
  const Strings page{"pages", "repo", "--page", "errors"};
  EXPECT_EQ(program.run(page).out, "errors (1)\n  \"caf\\351\\t\\\"\\\\.py\"\n");
  EXPECT_THAT(program.run({"pages", "repo", "--page", "errors", "--format", "json"}).out,
              HasSubstr(R"("caf\udce9\t\"\\.py")"));
}

TEST(Program, GlobThatMatchesNothingIsTold) {
  const ProgramUnderTest program;
  write_small_repository(program);
  const Strings flows{"pages", "repo", "--page", "flows", "--entry-points", "jobs/*"};
  const Ended ended = program.run(flows);
  EXPECT_EQ(ended.code, 0);
  EXPECT_EQ(ended.out, "flows (1)\n  jobs/* (0 entry points)\n");
  EXPECT_EQ(ended.err, "page-sources: no production file matches jobs/*\n");
  Strings quiet = flows;
  quiet.emplace_back("--quiet");
  EXPECT_EQ(program.run(quiet).err, "");
}

TEST(Program, IndexPrintsItsFigures) {
  const ProgramUnderTest program;
  write_small_repository(program);
  const Ended ended = program.run({"index", "repo", "--index", "i.db"});
  EXPECT_EQ(ended.code, 0);
  EXPECT_THAT(ended.err, HasSubstr("2 files added"));
  for (const auto* figure :
       {"files        2\n", "edges        1\n", "class        1\n", "i.db\n"}) {
    EXPECT_THAT(ended.out, HasSubstr(figure));
  }
  EXPECT_THAT(program.run({"index", "repo", "--index", "i.db"}).err, HasSubstr("2 unchanged"));
}

TEST(Program, DamagedIndexIsRebuilt) {
  const ProgramUnderTest program;
  write_small_repository(program);
  const Strings edges{"edges", "repo", "--index", "i.db"};
  const std::string whole = program.run(edges).out;
  ASSERT_THAT(whole, StartsWith("app/main.py\tapp/errors.py\t"));
  auto damaged = read_file(program.path() / "i.db");
  std::fill(damaged.begin() + 200, damaged.end(), '\x55');
  program.directory().write("i.db", damaged);
  const Ended ended = program.run(edges);
  EXPECT_EQ(ended.code, 0) << ended.err;
  EXPECT_EQ(ended.out, whole);
}

// The repositories beside this test, with their expected answers.
class FixtureRepository : public testing::TestWithParam<std::string> {
 protected:
  FixtureRepository() { copy_to(program_.path() / "repo"); }

  void copy_to(const std::filesystem::path& to) const {
    std::filesystem::create_directories(to.parent_path());
    std::filesystem::copy(folder() / "repository", to, std::filesystem::copy_options::recursive);
  }

  std::filesystem::path folder() const { return kSource / "tests/repositories" / GetParam(); }

  ProgramUnderTest program_;
};

TEST_P(FixtureRepository, HasItsExpectedPages) {
  const auto answer = pages_of(program_.run({"pages", "repo", "--format", "json"}));
  EXPECT_EQ(answer["repository"], (program_.path() / "repo").native());
  EXPECT_EQ(answer["pages"], json::parse(read_file(folder() / "pages.json"))) << answer.dump(2);
  const auto schema = json::parse(read_file(kSource / "docs/pages.schema.json"));
  EXPECT_THAT(schema_faults(schema, answer), IsEmpty());
}

TEST_P(FixtureRepository, HasItsExpectedEdges) {
  EXPECT_EQ(program_.run({"edges", "repo"}).out, read_file(folder() / "edges.tsv"));
}

TEST_P(FixtureRepository, GivesTheSameBytesEverywhere) {
  copy_to(program_.path() / "elsewhere/deeper/copy");
  const std::vector<Strings> commands{
      {"pages"}, {"edges", "--format", "json"}, {"edges", "--format", "dot"}, {"symbols"}};
  for (const Strings& command : commands) {
    const auto run = [&](Strings more) {
      more.insert(more.begin(), command.begin(), command.end());
      return program_.run(more).out;
    };
    const std::string first = run({"repo", "--index", "1.db", "--threads", "1"});
    EXPECT_EQ(run({"repo", "--index", "1.db", "--threads", "2"}), first);
    EXPECT_EQ(run({"repo", "--index", "2.db", "--threads", "2"}), first);
    std::string moved = run({"elsewhere/deeper/copy"});
    const std::string place = "elsewhere/deeper/copy\"";
    if (const auto at = moved.find(place); at != std::string::npos) {
      moved.replace(at, place.size(), "repo\"");
    }
    EXPECT_EQ(moved, first);
  }
}

TEST_P(FixtureRepository, AnswersPageByPageAsAllAtOnce) {
  const auto all = pages_of(program_.run({"pages", "repo", "--format", "json"}))["pages"];
  for (const auto& [name, page] : all.items()) {
    const auto one = pages_of(program_.run({"pages", "repo", "--format", "json", "--page", name}));
    EXPECT_EQ(one["pages"], (json{{name, page}}));
  }
}

INSTANTIATE_TEST_SUITE_P(Repositories, FixtureRepository,
                         testing::Values("csharp_orders", "python_service", "typescript_shop"),
                         [](const auto& tested) { return tested.param; });

}  // namespace
}  // namespace kestrix::program
