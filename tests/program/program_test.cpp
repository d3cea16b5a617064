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

#include "tests/program/process.h"

namespace kestrix::program {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Strings = std::vector<std::string>;

const std::filesystem::path kSource = KESTRIX_SOURCE_DIR;

json pages_of(const Ended& ended) {
  EXPECT_EQ(ended.code, 0) << ended.err;
  return json::parse(ended.out);
}

json paths_of(const json& picks) {
  json paths = json::array();
  for (const json& pick : picks) paths.push_back(pick.at("path"));
  return paths;
}

// A page or a class of entry points with bare paths in place of its files.
json bare(const json& answer) {
  json out{{"files", paths_of(answer.at("files"))}};
  if (!answer.at("further").empty()) out["further"] = paths_of(answer.at("further"));
  for (const char* kept : {"has_material", "entry_points", "roots"}) {
    if (answer.contains(kept)) out[kept] = answer[kept];
  }
  return out;
}

// The pages without their reasons and counts.
json paths_alone(const json& pages) {
  json out = json::object();
  for (const auto& [name, page] : pages.items()) {
    if (!page.contains("classes")) {
      out[name] = bare(page);
      continue;
    }
    out[name]["classes"] = json::array();
    for (const json& flow : page["classes"]) out[name]["classes"].push_back(bare(flow));
  }
  return out;
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
      {{"simbols", "--kind", "class"}, "did you mean symbols?"},
      {{"nowhere"}, "nowhere is neither a subcommand nor a directory"},
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
      {{"why", "repo", "errors", "b.py"}, "b.py: no such file"},
      {{"edges", "repo", "--path", "a.py", "b.py"}, "b.py"},
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
  for (const std::string repository : {"empty", "prose"}) {
    const auto answer = pages_of(program.run({"pages", repository, "--format", "json"}));
    EXPECT_EQ(paths_alone(answer["pages"]), json::parse(R"({
      "data_models": {"files": []}, "configuration": {"files": []},
      "errors": {"has_material": false, "files": []}, "flows": {"classes": []},
      "extending": {"files": []}, "examples": {"files": []}, "decisions": {"files": []}})"));
    for (const auto& [name, page] : answer["pages"].items()) {
      EXPECT_NE(page.value("nothing_found", ""), "") << name;
    }
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
  EXPECT_THAT(program.run(page).out,
              StartsWith("errors (1)\n  \"caf\\351\\t\\\"\\\\.py\"  defines "));
  EXPECT_THAT(program.run({"pages", "repo", "--page", "errors", "--format", "json"}).out,
              HasSubstr(R"("caf\udce9\t\"\\.py")"));
}

TEST(Program, GlobThatMatchesNothingIsTold) {
  const ProgramUnderTest program;
  write_small_repository(program);
  const Strings flows{"pages", "repo", "--page", "flows", "--entry-points", "jobs/*"};
  const Ended ended = program.run(flows);
  EXPECT_EQ(ended.code, 0);
  EXPECT_EQ(ended.out, "flows (1)\n  jobs/* (0 entry points)  files that the pattern matches\n");
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
  const Ended quiet = program.run({"-q", "index", "repo", "--index", "i.db"});
  EXPECT_EQ(quiet.out + quiet.err, "");
}

TEST(Program, CurrentDirectoryIsTheDefault) {
  ProgramUnderTest program;
  program.directory().write("errors.py", "class AppError(Exception):\n    pass\n");
  EXPECT_THAT(program.run({}).out, StartsWith("data_models (0)\n"));
  EXPECT_EQ(program.run({"--page", "errors", "--paths"}).out, "errors.py\n");
  EXPECT_EQ(program.run({"-0", "--page", "errors"}).out, std::string("errors.py\0", 10));
}

TEST(Program, FolderOfAWorkTreeIsAnsweredAloneAndSaidSo) {
  const ProgramUnderTest program;
  write_small_repository(program);
  program.directory().write("repo/.git/HEAD", "ref: refs/heads/main\n");
  program.directory().write("repo/.git/refs/heads/x", "");
  program.directory().write("repo/.git/objects/x", "");
  const Ended ended = program.run({"repo/app", "--page", "errors", "--paths"});
  EXPECT_EQ(ended.out, "errors.py\n");
  EXPECT_EQ(ended.err,
            "page-sources: answering for the folder app alone; the top of the work tree is " +
                (program.path() / "repo").native() + "\n");
  EXPECT_EQ(program.run({"repo", "--page", "errors"}).err, "");
}

TEST(Program, AnswersThatMayBeIncompleteSaySo) {
  const ProgramUnderTest program;
  program.directory().write("bare/HEAD", "ref: refs/heads/main\n");
  program.directory().write("bare/objects/x", "");
  program.directory().write("bare/refs/x", "");
  const Ended ended = program.run({"bare", "--format", "json"});
  EXPECT_EQ(ended.err, "page-sources: a bare repository has no work tree to read\n");
  EXPECT_EQ(json::parse(ended.out)["warnings"],
            json::parse(R"(["a bare repository has no work tree to read"])"));
  EXPECT_EQ(program.run({"bare", "-q"}).err, "");
}

TEST(Program, WhyTellsReasonsRanksAndWhatIsMissing) {
  const ProgramUnderTest program;
  write_small_repository(program);
  EXPECT_THAT(program.run({"why", "repo", "errors", "./app/errors.py"}).out,
              StartsWith("app/errors.py is number 1 of the files on the page errors\n"
                         "  defines 1 exception type: AppError:1\n"
                         "    app/errors.py:1  AppError\n"
                         "  used by 1 file\n"
                         "    app/main.py\n"));
  const auto absolute = std::filesystem::canonical(program.path() / "repo/app/errors.py");
  EXPECT_EQ(program.run({"why", "repo", "errors", absolute}).out,
            program.run({"why", "repo", "errors", "app/errors.py"}).out);
  expect_one_line_error(program.run({"why", "repo", "errors", "/etc/passwd"}), 1, "/etc/passwd");
  EXPECT_THAT(program.run({"why", "repo", "errors", "app/main.py"}).out,
              StartsWith("app/main.py is not on the page errors\n  defines no error type"));
  EXPECT_THAT(program.run({"why", "repo", "decisions", "app/main.py"}).out,
              HasSubstr("no document, and the page lists documents"));
}

TEST(Program, EdgesAreFilteredFollowedAndSummed) {
  const ProgramUnderTest program;
  program.directory().write("repo/a/one.py", "from a.two import x\nx()\n");
  program.directory().write("repo/a/two.py", "from b.c.three import y\ndef x(): y()\n");
  program.directory().write("repo/b/c/three.py", "def y(): pass\n");
  program.directory().write("repo/main.py",
                            "from b.c.three import y\nfrom a.one import x\ny(); x()\n");
  const auto edges = [&](Strings more) {
    more.insert(more.begin(), {"edges", "repo"});
    return program.run(more).out;
  };
  const std::string one_to_two = "a/one.py\ta/two.py\t2\n";
  const std::string two_to_three = "a/two.py\tb/c/three.py\t2\n";
  EXPECT_EQ(edges({"--to", "b/**", "--from", "a"}), two_to_three);
  EXPECT_EQ(edges({"--within", "a"}), one_to_two);
  EXPECT_EQ(edges({"--path", "a/one.py", "b/c/three.py"}), one_to_two + two_to_three);
  EXPECT_EQ(edges({"--path", "b/c/three.py", "main.py"}), "");
  for (const std::string form : {"tsv", "dot"}) {
    EXPECT_THAT(edges({"--by", "folder", "--format", form}), HasSubstr("b/c"));
    EXPECT_THAT(edges({"--by", "folder:1", "--format", form}), Not(HasSubstr("b/c")));
  }
  const auto folders = json::parse(edges({"--by", "folder:1", "--format", "json"}))["edges"];
  const auto files = json::parse(edges({"--format", "json"}))["edges"];
  ASSERT_EQ(folders.size(), 3U);
  EXPECT_EQ(folders[2]["source"], "a");
  EXPECT_EQ(folders[2]["target"], "b");
  EXPECT_EQ(folders[2]["weight"], files[1]["weight"]) << files;
  EXPECT_EQ(folders[2]["edges"], 1);
}

TEST(Program, LastGlobThatMatchesDecides) {
  const ProgramUnderTest program;
  for (const char* path : {"a/one.py", "a/two.py", "b/three.py"}) {
    program.directory().write(std::string("repo/") + path, "class AnError(Exception): pass\n");
  }
  const auto errors = [&](Strings more) {
    more.insert(more.end(), {"repo", "--page", "errors", "--paths"});
    return program.run(more).out;
  };
  EXPECT_EQ(errors({"--exclude", "a"}), "b/three.py\n");
  EXPECT_EQ(errors({"--exclude", "a/**", "--include", "*/two.py"}), "a/two.py\nb/three.py\n");
  EXPECT_EQ(errors({"--include", "*/two.py", "--exclude", "a/**"}), "b/three.py\n");
  EXPECT_EQ(errors({}), "a/one.py\na/two.py\nb/three.py\n");
  const auto counted =
      json::parse(program.run({"index", "repo", "--exclude", "a", "--format", "json"}).out);
  EXPECT_EQ(counted["left_out"]["excluded by a setting"], 2);
}

TEST(Program, CacheIsListedAndCleaned) {
  const ProgramUnderTest program;
  write_small_repository(program);
  program.directory().write("gone/a.py", "x = 1\n");
  program.run({"index", "repo"});
  program.run({"index", "gone"});
  std::filesystem::remove_all(program.path() / "gone");
  const std::string listed = program.run({"cache"}).out;
  EXPECT_LT(listed.find("gone (gone)"), listed.find("/repo  "));
  EXPECT_THAT(program.run({"cache", "clean", "--older-than", "1d"}).out, StartsWith("0 indexes"));
  EXPECT_THAT(program.run({"cache", "clean"}).out, HasSubstr("2 indexes removed"));
  EXPECT_THAT(program.run({"cache", "list"}).out, StartsWith("0 indexes"));
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
  EXPECT_EQ(paths_alone(answer["pages"]), json::parse(read_file(folder() / "pages.json")))
      << answer.dump(2);
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
