#include "kestrix/index/index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kestrix/index/name_pattern.h"
#include "tests/index/index_fixture.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST(NamePattern, TakesPercentForAnyRunAndNothingElse) {
  struct Case {
    const char* pattern;
    const char* name;
    bool matches;
  };
  constexpr Case kCases[] = {
      {"%", "", true},
      {"%", "Any", true},
      {"", "", true},
      {"", "x", false},
      {"Error", "error", true},
      {"Error", "Errors", false},
      {"%Error", "Error", true},
      {"%Error", "AError", true},
      {"%Error", "ErrorA", false},
      {"E%", "Err", true},
      {"E%", "xE", false},
      {"a%a", "a", false},
      {"a%a", "aa", true},
      {"%b%", "abc", true},
      {"%b%", "ac", false},
      {"a%b%c", "aXbXc", true},
      {"a%b%b", "ab", false},
      {"a%%c", "ac", true},
      {"_x", "ax", false},
      {"_x", "_x", true},
      {"[a]", "a", false},
      {"[a]", "[A]", true},
      {"a*", "ab", false},
      {"a?", "ab", false},
      {"a\\%", "a\\b", true},
      {"%HANDLERS", "_my_handlers", true},
      {"\xC3\x89%", "\xC3\xA9x", false},
  };
  for (const auto& [pattern, name, matches] : kCases) {
    EXPECT_EQ(NamePattern(pattern).matches(name), matches) << pattern << " on " << name;
  }
}

class Index : public testing::Test, protected IndexFixture {
 protected:
  static std::vector<std::string> names(const SymbolSearch& found) {
    std::vector<std::string> names;
    for (const Symbol& symbol : found.symbols) names.push_back(symbol.name);
    return names;
  }
};

TEST_F(Index, SearchesSymbolsInATotalOrder) {
  write("b.py", "class BError(Exception):\n    pass\n");
  write("a.py", "class ZError(Exception):\n    pass\n\n\nclass AException(ZError):\n    pass\n");
  write("a-c.py", "class Error(Exception): pass\nclass Other: pass\nERROR = 1\n");
  const auto [index, result] = refreshed();

  const auto all = index->search_symbols("%error", {SymbolKind::kClass, 100});
  EXPECT_THAT(names(all), ElementsAre("Error", "ZError", "BError"));
  EXPECT_EQ(all.total, 3);
  EXPECT_FALSE(all.truncated);

  const std::string_view both[] = {"%Error", "%Exception", "Z%"};
  const auto some = index->search_symbols(both, {SymbolKind::kClass, 2});
  EXPECT_THAT(names(some), ElementsAre("Error", "ZError"));
  EXPECT_EQ(some.total, 4);
  EXPECT_TRUE(some.truncated);

  EXPECT_EQ(index->search_symbols("%", {SymbolKind::kClass, 0}).total, 5);
  EXPECT_THAT(names(index->search_symbols("Error", {SymbolKind::kConstant, 9})),
              ElementsAre("ERROR"));
  EXPECT_EQ(
      index->search_symbols(std::span<const std::string_view>(), {SymbolKind::kClass, 9}).total, 0);

  auto symbols = all.symbols;
  symbols.push_back({.id = 0, .name = "nowhere", .signature = ""});
  symbols.push_back({.id = 4711, .name = "beyond", .signature = ""});
  EXPECT_THAT(
      index->get_file_paths_batch(symbols),
      UnorderedElementsAre(Pair(all.symbols[0].id, "a-c.py"), Pair(all.symbols[1].id, "a.py"),
                           Pair(all.symbols[2].id, "b.py")));
  EXPECT_THAT(index->get_file_paths_batch({}), IsEmpty());
}

TEST_F(Index, CountsWhatItLeavesOut) {
  write("docs/a.md", "# A\n");
  write("a.py", "from . import missing\nx = 1\n");
  write("image.bin", std::string("\0\1", 2));
  write("latin.py", "NAME = '\xE9'\n");
  write("wide.py", std::string("\xFF\xFE"
                               "A\0 \0=\0 \0001\0\n\0",
                               14));
  write("large.py", "A = 1\n" + std::string(2 << 20, ' '));
  write("bundle.js", "!function(){" + std::string(5000, 'a') + "}()");
  const auto [index, result] = refreshed();
  const Statistics statistics = index->statistics();
  EXPECT_EQ(statistics.files, 6U);
  EXPECT_EQ(statistics.documents, 1U);
  EXPECT_EQ(statistics.generated, 1U);
  EXPECT_EQ(statistics.skipped[skipped::kBinary], 1U);
  EXPECT_EQ(statistics.skipped[skipped::kLarge], 1U);
  EXPECT_EQ(statistics.skipped[skipped::kMinified], 1U);
  EXPECT_THAT(names(index->search_symbols("%", {SymbolKind::kConstant, 9})),
              ElementsAre("NAME", "A"));
}

// Each limit on what a file, a project file or a name may take is told where it is met, and is not
// where something less is all there is.
TEST_F(Index, CountsWhereALimitIsMet) {
  const auto each = [](int count, std::string_view piece) {
    std::string text;
    for (int i = 0; i < count; ++i) text += fmt::format(fmt::runtime(piece), i);
    return text;
  };
  struct File {
    const char* path;
    std::string start;
    std::string_view piece;  // as often as the case says
    std::string end;
  };
  struct Case {
    std::string_view reason;
    int most;
    std::vector<File> files;
  };
  const std::vector<Case> cases{
      {skipped::kCrowded, 1'230, {{".gitattributes", "", "{:034} linguist-vendored\n", ""}}},
      {skipped::kCrowded, 63, {{"A.java", "class A implements Z", ", I{}", " {}"}}},
      {skipped::kEntangled,
       63,
       {{"Package.swift", "", ".target(name: \"T{0}\", path: \"p{0}\"),\n", ""},
        {"p0/A.swift", "import T70\n", "import T{}\n", ""},
        {"p70/A.swift", "struct B {}", "", ""}}},
      {skipped::kEntangled,
       250,
       {{"a.cs", "", "namespace N{} {{ class A {{}} }}\n", ""},
        {"b.cs", "", "using N{};\n", "class C { A a; }"}}},
      {skipped::kEntangled,
       16,
       {{"tsconfig.json", R"({"compilerOptions": {"paths": {"b": ["c"])", R"(, "*x{0}": ["{0}/*"])",
         "}}}"},
        {"a.ts", "import 'd'", "", ""}}},
      {skipped::kEntangled,
       1'000,
       {{"package.json", R"({"workspaces": ["b")", R"(, "p{}/*")", "]}"},
        {"a.ts", "import 'd'", "", ""}}},
      {skipped::kEntangled,
       499,
       {{"compile_commands.json", R"([{"directory": "/r", "file": "a.c", "arguments": ["cc")",
         R"(, "-Id{}")", "]}]"},
        {"a.c", "#include \"x.h\"\n", "", ""}}},
      {skipped::kEntangled,
       63,
       {{"go.mod", "module m\n", "", ""},
        {"i.go", "package m\n", "type I{} interface {{ M() }}\n", ""},
        {"t.go", "package m\ntype T struct{}\nfunc (T) M() {}\n", "", ""}}},
  };
  for (const auto& [reason, most, files] : cases) {
    for (const int more : {0, 8}) {
      for (const auto& [path, start, piece, end] : files)
        write(path, start + each(most + more, piece) + end);
      EXPECT_EQ(refreshed().index->statistics().skipped[reason] > 0, more > 0)
          << files.front().path << " " << most + more;
    }
    for (const File& file : files) remove(file.path);
  }
}

TEST_F(Index, KnowsWhatATextDefines) {
  const std::string table = "CREATE TABLE users (b int);\n";
  write("a.sql", "-- Code generated by x. DO NOT EDIT.\n" + table + table);
  write("large.sql", table + std::string(3 << 20, ' ') + table);
  write("far.sql", table + std::string(500'000, ' ') + table);
  write("a.py", "@dataclass\nclass A: pass\n");
  write("a.md", table);
  const auto data_of = [](const RepositoryIndex& index, std::string_view path) {
    return index.files()[index.find(path).value()].data;
  };
  refreshed();
  const auto index = open(options());
  EXPECT_EQ(data_of(*index, "a.sql"), (DataSignals{.tables = 2, .made_by_program = true}));
  EXPECT_EQ(data_of(*index, "far.sql").tables, 1U) << "beyond what is looked at";
  EXPECT_EQ(data_of(*index, "large.sql").tables, 1U) << "not parsed, but looked into";
  EXPECT_EQ(data_of(*index, "a.py"), DataSignals{.records = 1});
  EXPECT_EQ(data_of(*index, "a.md"), DataSignals());
  settle();
  write("a.py", "class A: pass\n");
  EXPECT_EQ(data_of(*refreshed().index, "a.py"), DataSignals());
}

}  // namespace
}  // namespace kestrix::index
