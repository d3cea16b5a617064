#include "kestrix/index/refresh/indexer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <random>
#include <string>
#include <vector>

#include "kestrix/store/content_hash.h"
#include "tests/index/index_fixture.h"

namespace kestrix::index {
namespace {

class Indexer : public testing::Test, protected IndexFixture {};

TEST_F(Indexer, ReadsOnlyWhatLooksChanged) {
  write("a.py", "import b\n");
  write("b.py", "class B: pass\n");
  EXPECT_EQ(refreshed().result.added, 2U);
  EXPECT_EQ(refreshed().result.unchanged, 2U);

  write("b.py", "class B: pass\nclass C: pass\n");
  scratch().run("touch repo/a.py");
  const auto [index, result] = refreshed();
  EXPECT_EQ(result.changed, 1U);
  EXPECT_EQ(result.unchanged, 1U);
  EXPECT_EQ(index->symbols().size(), 2U);
  EXPECT_EQ(index->edges().size(), 1U);
}

TEST_F(Indexer, SeesAnEditThatKeepsSizeAndTime) {
  write("a.py", "class A: pass\n");
  for (const char* text : {"class B: pass\n", "class C: pass\n", "class D: pass\n"}) {
    refreshed();
    const auto time = std::filesystem::last_write_time(scratch() / "repo/a.py");
    write("a.py", text);
    std::filesystem::last_write_time(scratch() / "repo/a.py", time);
    EXPECT_EQ(refreshed().index->symbols().front().name, std::string_view(text).substr(6, 1));
  }
}

// Two texts that a hash for speed cannot tell apart: bytes of its key cancel what stands behind
// them but for its sum, and the one text adds in one place what it takes away in another.
TEST_F(Indexer, SeesAnEditThatKeepsAQuickHash) {
  const auto text = [](std::string_view assigned, std::string_view remark) {
    std::string made(512, '\n');
    made.replace(79, 5, "#\x72\x40\xa4\xa4").replace(84, assigned.size(), assigned);
    made.replace(207, 5, "#\x82\x5a\xd0\x7d").replace(212, remark.size(), remark);
    return made;
  };
  const std::string before = text("\nX=1", "pbq");
  const std::string after = text("\nY=1", "paq");
  ASSERT_NE(before, after);
  ASSERT_EQ(quick_hash(before), quick_hash(after));
  write("a.py", before);
  EXPECT_EQ(refreshed().index->symbols().front().name, "X");
  write("a.py", after);
  EXPECT_EQ(refreshed().index->symbols().front().name, "Y");
}

TEST_F(Indexer, GivesOneResultForAnyNumberOfThreads) {
  for (int i = 0; i < 200; ++i) {
    write(fmt::format("p/m{}.py", i),
          fmt::format("from p.m{} import A\nclass A: pass\nA()\n", (i * 7 + 3) % 200));
  }
  write("p/__init__.py");
  std::string first;
  for (const unsigned threads : {1U, 2U, 3U, 8U}) {
    IndexOptions with_threads = options(fmt::format("index{}.sqlite", threads));
    with_threads.threads = threads;
    const std::string text = dump(*refresh_and_open(with_threads).index);
    if (first.empty()) first = text;
    EXPECT_EQ(text, first) << threads;
  }
  EXPECT_NE(first.find("edge"), first.npos);
}

// Edits a repository at random, in the ways that people and tools do.
class Editor {
 public:
  explicit Editor(const IndexFixture& files) : files_(files) {}

  void edit() {
    switch (pick(10)) {
      case 0:
      case 1:
        return files_.write(any_path(), any_text());
      case 5:
        return add_use(any_path());
      case 6:
      case 7:
        return files_.write(fmt::format("p{}/m{}.ts", pick(3), pick(3)), any_script());
      case 8:
        return files_.write(
            "tsconfig.json",
            fmt::format(R"({{"compilerOptions": {{"paths": {{"@/*": ["p{}/*"]}}}}}})", pick(3)));
      case 2:
        return files_.remove(any_path());
      case 3:
        return files_.remove(fmt::format("p{}", pick(3)));
      case 4:
        return rename(any_path(), any_path());
      default:
        return files_.write(fmt::format("p{}/x{}.bin", pick(3), pick(2)),
                            pick(2) == 0 ? "a" : kZero);
    }
  }

 private:
  int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

  std::string any_path() {
    const int name = pick(6);
    return fmt::format("p{}/{}.py", pick(3), name == 0 ? "__init__" : fmt::format("m{}", name));
  }

  std::string any_text() {
    std::string text;
    for (int line = pick(4); line > 0; --line) {
      text += fmt::format("from p{}.m{} import C{}\nimport p{}\nfrom .m{} import *\n", pick(3),
                          pick(6), pick(4), pick(3), pick(6));
    }
    return text + fmt::format("class C{}: pass\nC{}()\n", pick(4), pick(4));
  }

  std::string any_script() {
    return fmt::format(
        "import {{A}} from '@/m{}';\nimport './x{}.bin';\nexport * from './m{}';\n"
        "export class {} {{}}\n",
        pick(3), pick(2), pick(3), pick(2) == 0 ? "A" : "B");
  }

  // Nothing that another file could see.
  void add_use(const std::string& path) {
    const auto whole = files_.scratch() / "repo" / path;
    if (std::filesystem::exists(whole)) std::ofstream(whole, std::ios::app) << "C1()\n";
  }

  void rename(const std::string& from, const std::string& to) {
    const auto root = files_.scratch() / "repo";
    if (std::filesystem::exists(root / from) &&
        std::filesystem::exists((root / to).parent_path())) {
      std::filesystem::rename(root / from, root / to);
    }
  }

  static constexpr std::string_view kZero{"\0", 1};
  const IndexFixture& files_;
  std::mt19937 random_{20240229};
};

TEST_F(Indexer, EndsWhereARebuildWould) {
  Editor editor(*this);
  write("README.md");
  for (int round = 0; round < 50; ++round) {
    for (int edits = round % 5 == 0 ? 5 : 1; edits > 0; --edits) editor.edit();
    const std::string refreshed_dump = dump(*refreshed().index);
    scratch().remove("fresh.sqlite");
    ASSERT_EQ(refreshed_dump, dump(*refresh_and_open(options("fresh.sqlite")).index)) << round;
  }
}

TEST_F(Indexer, ResolvesAnewWhatAChangeElsewhereReaches) {
  write("a.ts", "import {A} from './barrel';\nimport {B} from '@/b';\nA();\nB();\n");
  write("barrel.ts", "export * from './x';\n");
  write("x.ts", "export class A {}\n");
  write("y.ts", "export class A {}\n");
  write("one/b.ts", "export class B {}\n");
  write("two/b.ts", "export class B {}\n");
  write("tsconfig.json", R"({"compilerOptions": {"paths": {"@/*": ["one/*"]}}})");
  std::string before = dump(*refreshed().index);
  const std::pair<const char*, const char*> edits[] = {
      {"barrel.ts", "export * from './y';\n"},
      {"tsconfig.json", R"({"compilerOptions": {"paths": {"@/*": ["two/*"]}}})"},
      {"a.ts", "import {A} from './barrel';\nimport {B} from '@/b';\nA();\nA();\nB();\n"},
      {"y.ts", "export class C {}\n"},
  };
  for (const auto& [path, text] : edits) {
    write(path, text);
    const std::string after = dump(*refreshed().index);
    EXPECT_NE(after, before) << path;
    scratch().remove("fresh.sqlite");
    EXPECT_EQ(after, dump(*refresh_and_open(options("fresh.sqlite")).index)) << path;
    before = after;
  }
}

TEST_F(Indexer, DoesNotTakeACopyForTheOriginal) {
  write("a.py", "class A: pass\n");
  const std::string original = dump(*refreshed().index);
  scratch().run("cp -a repo copy");
  IndexOptions of_copy = options();
  of_copy.root = scratch() / "copy";
  const auto [index, result] = refresh_and_open(of_copy);
  EXPECT_NE(result.rebuilt, "");
  EXPECT_EQ(dump(*index), original);
}

TEST_F(Indexer, ReportsProgressAndStopsWhenAsked) {
  for (int i = 0; i < 50; ++i) write(fmt::format("m{}.py", i), "class A: pass\n");
  settle();
  const auto before = refreshed().index->files().size();
  for (int i = 0; i < 50; ++i) write(fmt::format("n{}.py", i), "class A: pass\n");
  StopFlag stop = false;
  std::size_t reports = 0;
  IndexOptions stopped = options();
  stopped.stop = &stop;
  stopped.progress = [&](std::size_t done, std::size_t total) {
    EXPECT_EQ(total, 50U);
    EXPECT_EQ(done, ++reports);
    stop = done == 10;
  };
  EXPECT_THROW(refresh(stopped), StopRequest);
  EXPECT_EQ(reports, 10U);
  EXPECT_EQ(open(options())->files().size(), before);
}

TEST_F(Indexer, TakesMarkupForNoLanguageButThoseWrittenWithinIt) {
  const std::string markup = "<?xml version=\"1.0\"?>\n<!DOCTYPE TS>\n<TS><!-- \n";
  const std::string doctype = "\xef\xbb\xbf \n<!DOCTYPE TS><TS>\n";
  const std::string in_utf16 = [] {
    std::string bytes = "\xff\xfe";
    for (const char c : std::string_view("<?xml version=\"1.0\"?><TS/>")) bytes += {c, '\0'};
    return bytes;
  }();
  write("de.ts", markup);
  write("fr.ts", doctype);
  write("ja.ts", in_utf16);
  write("layout.h", markup);
  write("code.ts", "export const a = <any>1;\n");
  write("feed.php", markup + "<?php class Feed {}\n");
  const auto index = refreshed().index;
  std::string languages;
  for (const auto& file : index->files()) {
    languages += fmt::format("{}:{} ", file.path, file.language);
  }
  EXPECT_EQ(languages, "code.ts:typescript de.ts: feed.php:php fr.ts: ja.ts: layout.h: ");
  EXPECT_TRUE(index->statistics().skipped.empty());
}

TEST_F(Indexer, SkipsWhatCannotBeRead) {
  write("a.py");
  write("secret.py");
  write("closed/b.py");
  ::chmod((scratch() / "repo/secret.py").c_str(), 0);
  ::chmod((scratch() / "repo/closed").c_str(), 0);
  as_nobody(scratch(), [&] {
    const auto index = refresh_and_open(options("repo/index.sqlite")).index;
    EXPECT_EQ(index->files().size(), 1U);
    EXPECT_EQ(index->statistics().skipped[skipped::kUnreadable], 1U);
    EXPECT_EQ(index->statistics().skipped[skipped::kUnreadableDirectory], 1U);
  });
  ::chmod((scratch() / "repo/secret.py").c_str(), 0600);
  ::chmod((scratch() / "repo/closed").c_str(), 0700);
  EXPECT_EQ(refreshed().index->files().size(), 3U);
}

}  // namespace
}  // namespace kestrix::index
