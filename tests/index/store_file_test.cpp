#include "kestrix/store/store_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <string>

#include "kestrix/store/cache_path.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/store.h"
#include "kestrix/utils/error.h"
#include "tests/index/index_fixture.h"

namespace kestrix::index {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class IndexFile : public testing::Test, protected IndexFixture {
 protected:
  IndexFile() { write("a.py", "class A: pass\n"); }

  void expect_refused(const std::string& file, const std::string& why) const {
    const std::string before = scratch().read(file);
    try {
      refresh(options(file));
      ADD_FAILURE() << file << " was taken";
    } catch (const Error& error) {
      EXPECT_THAT(error.what(), AllOf(HasSubstr((scratch() / file).native()), HasSubstr(why)));
    }
    EXPECT_EQ(scratch().read(file), before);
  }
};

TEST_F(IndexFile, RefusesWhatBelongsToOthers) {
  scratch().write("notes.txt", "not a database\n");
  expect_refused("notes.txt", "not an index");
  SQLite::Database(scratch() / "other.sqlite", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
      .exec("CREATE TABLE t (x)");
  expect_refused("other.sqlite", "another program");
  std::filesystem::create_directory(scratch() / "folder");
  ::mkfifo((scratch() / "pipe").c_str(), 0600);
  for (const char* place : {"folder", "pipe", "missing/index.sqlite"}) {
    EXPECT_THROW(refresh(options(place)), Error) << place;
  }
  EXPECT_THROW(open(options("never-made.sqlite")), Error);
}

TEST_F(IndexFile, FollowsNoLink) {
  refresh(options("other.sqlite"));
  std::filesystem::create_symlink(scratch() / "other.sqlite", scratch() / "link.sqlite");
  std::filesystem::create_symlink(scratch() / "made.sqlite", scratch() / "dangling.sqlite");
  for (const char* link : {"link.sqlite", "dangling.sqlite"}) {
    EXPECT_THROW(refresh(options(link)), Error) << link;
  }
  EXPECT_FALSE(std::filesystem::exists(scratch() / "made.sqlite"));
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    scratch().write("target", "kept");
    scratch().remove(std::string("index.sqlite") + suffix);
    std::filesystem::create_symlink(scratch() / "target",
                                    scratch() / (std::string("index.sqlite") + suffix));
    write("b.py", suffix);
    EXPECT_EQ(refreshed().index->files().size(), 2U) << suffix;
    EXPECT_EQ(scratch().read("target"), "kept");
  }
}

TEST_F(IndexFile, IsForTheUserAlone) {
  const auto mode_of = [&](const std::filesystem::path& path) {
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
  };
  const mode_t before = ::umask(0);
  ::setenv("XDG_CACHE_HOME", (scratch() / "cache").c_str(), 1);
  IndexOptions by_default = options();
  by_default.file.reset();
  const auto file = refresh(by_default).file;
  EXPECT_EQ(mode_of(file), 0600U);
  EXPECT_EQ(mode_of(file.parent_path()), 0700U);
  refresh(options());
  EXPECT_EQ(mode_of(scratch() / "index.sqlite"), 0600U);
  ::umask(before);
  ::chmod((scratch() / "index.sqlite").c_str(), 0666);
  EXPECT_THROW(refresh(options()), Error) << "anybody may have written it";
  ::chmod(file.c_str(), 0666);
  refresh(by_default);
  EXPECT_EQ(mode_of(file), 0600U) << "made anew";
  ::unsetenv("XDG_CACHE_HOME");
}

TEST_F(IndexFile, IsNotTakenFromAnotherUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  refresh(options());
  ASSERT_EQ(::chown((scratch() / "index.sqlite").c_str(), 65534, 65534), 0);
  EXPECT_THROW(refresh(options()), Error);
  EXPECT_THROW(open(options()), Error);
}

// What somebody planted is not run, not believed and not edited: a new file takes its place.
TEST_F(IndexFile, ReplacesWhatIsNotExactlyItsOwnTables) {
  const std::string whole = dump(*refreshed().index);
  const std::string attach =
      fmt::format("CREATE TABLE \"x\"\"; COMMIT; ATTACH '{}' AS o; CREATE TABLE o.t(a); --\" (a)",
                  (scratch() / "planted").native());
  const std::string planted[] = {
      attach,
      "CREATE TRIGGER t AFTER INSERT ON setting BEGIN DELETE FROM file; END",
      "CREATE TRIGGER t AFTER DELETE ON skipped BEGIN DELETE FROM edges; END",
      "ALTER TABLE file RENAME TO f; CREATE VIEW file AS WITH RECURSIVE r(x) AS (SELECT 1 UNION "
      "ALL "
      "SELECT x + 1 FROM r) SELECT x, x, '', 0, 0, 0, 0, 0, x'', 0, x'' FROM r",
      "CREATE INDEX i ON file (path)",
      "ALTER TABLE file ADD COLUMN more",
      "DROP TABLE skipped; CREATE TABLE skipped (reason TEXT PRIMARY KEY, count INTEGER)",
  };
  for (const std::string& sql : planted) {
    SQLite::Database(scratch() / "index.sqlite", SQLite::OPEN_READWRITE).exec(sql);
    EXPECT_THROW(open(options()), Error) << sql;
    const auto [index, result] = refreshed();
    EXPECT_EQ(dump(*index), whole) << sql;
    EXPECT_NE(result.rebuilt, "") << sql;
    EXPECT_FALSE(std::filesystem::exists(scratch() / "planted"));
    EXPECT_EQ(refreshed().result.rebuilt, "") << sql;
  }
}

TEST_F(IndexFile, DoesNotTakeInWhatNoFileGives) {
  const std::string whole = dump(*refreshed().index);
  for (const char* table : {"symbols", "declarations", "edges"}) {
    SQLite::Database(scratch() / "index.sqlite", SQLite::OPEN_READWRITE)
        .exec(fmt::format("INSERT OR REPLACE INTO {} SELECT id, zeroblob(20000000) FROM file",
                          table));
    Store store = Store::open_existing(scratch() / "index.sqlite", {});
    const auto take = [](std::int64_t, std::string_view) {};
    EXPECT_THROW(
        {
          store.each_symbols(take);
          store.each_declarations(take);
          store.each_edges(take);
        },
        CorruptIndex)
        << table;
    EXPECT_EQ(dump(*refreshed().index), whole) << table;
  }
}

TEST_F(IndexFile, DoesNotWaitForeverForALock) {
  IndexOptions impatient = options();
  impatient.lock_timeout = std::chrono::milliseconds(50);
  const int folder = ::open(scratch().path().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(::flock(folder, LOCK_EX), 0);
  EXPECT_THROW(refresh(impatient), Error);
  const StopFlag stop = true;
  impatient.lock_timeout = std::chrono::hours(1);
  impatient.stop = &stop;
  EXPECT_THROW(refresh(impatient), StopRequest);
  ::close(folder);
  impatient.stop = nullptr;
  EXPECT_EQ(refresh(impatient).added, 1U);
}

TEST_F(IndexFile, TakesAnEmptyFile) {
  scratch().write("index.sqlite");
  EXPECT_EQ(refreshed().index->files().size(), 1U);
}

TEST_F(IndexFile, RebuildsADamagedIndex) {
  for (int i = 0; i < 50; ++i) write(fmt::format("m{}.py", i), "import a\nclass A: pass\nX = 1\n");
  const std::string whole = dump(*refreshed().index);
  const std::string good = scratch().read("index.sqlite");
  const auto expect_rebuilt = [&](const std::string& bad) {
    scratch().write("index.sqlite", bad);
    return dump(*refreshed().index) == whole;
  };
  EXPECT_TRUE(expect_rebuilt(good.substr(0, good.size() / 3)));
  for (const std::size_t size : {1U, 16U, 4096U, 10000U}) {
    std::mt19937 random(static_cast<unsigned>(size));
    for (int round = 0; round < 8; ++round) {
      std::string bad = good;
      const std::size_t at = 100 + random() % (bad.size() - 100);
      for (std::size_t i = at; i < std::min(at + size, bad.size()); ++i) {
        bad[i] = static_cast<char>(random());
      }
      ASSERT_TRUE(expect_rebuilt(bad)) << size << " bytes at " << at;
    }
  }
}

TEST_F(IndexFile, RebuildsAnIndexOfAnotherVersion) {
  const std::string whole = dump(*refreshed().index);
  const auto exec = [&](const char* sql) {
    SQLite::Database(scratch() / "index.sqlite", SQLite::OPEN_READWRITE).exec(sql);
  };
  for (const char* sql : {"PRAGMA user_version = 999", "UPDATE setting SET value = 'old'",
                          "PRAGMA user_version = 0; DROP TABLE file"}) {
    exec(sql);
    const auto [index, result] = refreshed();
    EXPECT_NE(result.rebuilt, "") << sql;
    EXPECT_EQ(dump(*index), whole) << sql;
  }
  EXPECT_EQ(refreshed().result.rebuilt, "");
}

TEST_F(IndexFile, WaitsForAnotherWriterAndThenGivesUp) {
  refreshed();
  write("b.py");
  SQLite::Database other(scratch() / "index.sqlite", SQLite::OPEN_READWRITE);
  other.exec("BEGIN IMMEDIATE");
  IndexOptions impatient = options();
  impatient.lock_timeout = std::chrono::milliseconds(50);
  EXPECT_THROW(refresh(impatient), Error);
  EXPECT_EQ(open(options())->files().size(), 1U) << "readers see the state before";
  other.exec("ROLLBACK");
  EXPECT_EQ(refresh(impatient).added, 1U);
}

TEST_F(IndexFile, SurvivesAKill) {
  const std::string before = dump(*refreshed().index);
  for (int i = 0; i < 300; ++i) write(fmt::format("m{}.py", i), "class A: pass\n");
  const pid_t child = ::fork();
  if (child == 0) {
    IndexOptions killed = options();
    killed.progress = [](std::size_t done, std::size_t) {
      if (done == 150) ::raise(SIGKILL);
    };
    refresh(killed);
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(dump(*open(options())), before);
  EXPECT_EQ(refresh(options()).added, 300U);
}

TEST_F(IndexFile, IsReadWhereNothingCanBeWritten) {
  scratch().write("place/index.sqlite");
  settle();
  refresh(options("place/index.sqlite"));
  as_nobody(scratch(), [&] {
    EXPECT_EQ(refresh_and_open(options("place/index.sqlite")).index->files().size(), 1U);
    EXPECT_THROW(refresh(options("place/new.sqlite")), Error);
    write("b.py");
    EXPECT_THROW(refresh(options("place/index.sqlite")), Error) << "out of date";
  });
}

TEST_F(IndexFile, AnswersForUnsettledFilesWhereItCannotBeWritten) {
  std::filesystem::create_directory(scratch() / "place");
  write("a.py", "x = 1");
  write("secret.py");
  ::chmod((scratch() / "repo").c_str(), 0777);
  ::chmod((scratch() / "repo/a.py").c_str(), 0666);
  ::chmod((scratch() / "repo/secret.py").c_str(), 0);
  ::chmod((scratch() / "place").c_str(), 0777);
  as_nobody(scratch(), [&] { refresh(options("place/index.sqlite")); });
  ::chmod((scratch() / "place").c_str(), 0555);
  ::chmod((scratch() / "place/index.sqlite").c_str(), 0444);
  as_nobody(scratch(), [&] {
    write("a.py", "x = 1");  // as it was, at another time
    EXPECT_GT(refresh(options("place/index.sqlite")).unchanged, 1U);
    write("a.py", "y = 1");
    EXPECT_THROW(refresh(options("place/index.sqlite")), Error) << "out of date";
  });
}

// A process that is killed while it makes the file leaves its first page and a journal by which the
// next one takes the page back.
TEST_F(IndexFile, IsMadeAnewWhereItsMakingWasInterrupted) {
  {
    SQLite::Database made(scratch() / "index.sqlite", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    made.exec(fmt::format("PRAGMA application_id = {}", kApplicationId));
  }
  const auto big_endian = [](std::uint32_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(number >> shift);
    return bytes;
  };
  std::string journal = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
  for (const std::uint32_t field : {0U /* pages */, 1U /* nonce */, 0U /* pages before */,
                                    512U /* bytes of a sector */, 4096U /* bytes of a page */}) {
    journal += big_endian(field);
  }
  journal.resize(512);
  scratch().write("index.sqlite-journal", journal);
  const std::string whole = dump(*refreshed().index);
  EXPECT_EQ(dump(*refreshed().index), whole);
  EXPECT_EQ(look_at(scratch() / "index.sqlite"), PlaceContent::kIndex);
}

TEST_F(IndexFile, KeepsItsOwnFilesOutOfTheIndex) {
  IndexOptions inside = options("repo/index.sqlite");
  EXPECT_EQ(refresh_and_open(inside).index->statistics().skipped[skipped::kBinary], 0U);
  EXPECT_EQ(refresh(inside).added, 0U);
}

TEST_F(IndexFile, LiesInTheUsersCacheByDefault) {
  const auto root = scratch() / "repo";
  ::setenv("XDG_CACHE_HOME", (scratch() / "cache").c_str(), 1);
  const auto place = default_index_path(root);
  EXPECT_EQ(place.parent_path(), scratch() / "cache/page-sources");
  EXPECT_NE(place, default_index_path(scratch() / "other/repo"));
  IndexOptions by_default = options();
  by_default.file.reset();
  EXPECT_EQ(refresh(by_default).file, place);
  scratch().write(place.lexically_relative(scratch().path()).native(), "no longer an index\n");
  EXPECT_EQ(refresh(by_default).added, 1U) << "nothing else belongs there";

  scratch().write("cache-file");
  ::setenv("XDG_CACHE_HOME", (scratch() / "cache-file").c_str(), 1);
  EXPECT_THROW(refresh(by_default), Error);
  ::setenv("XDG_CACHE_HOME", (root / "sub").c_str(), 1);
  EXPECT_THROW(refresh(by_default), Error);
  ::setenv("XDG_CACHE_HOME", "relative", 1);
  ::setenv("HOME", (scratch() / "home").c_str(), 1);
  EXPECT_EQ(default_index_path(root).parent_path(), scratch() / "home/.cache/page-sources");
  ::unsetenv("XDG_CACHE_HOME");
}

}  // namespace
}  // namespace kestrix::index
