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

TEST_F(Index, ListsComponentsThatHoldProductionSource) {
  IndexOptions with_rules = options();
  with_rules.path_rules.is_test = [](std::string_view path) { return path.starts_with("tests/"); };
  with_rules.path_rules.components = [](std::span<const std::string> paths) {
    std::vector<Component> components;
    for (const std::string& path : paths) components.push_back({"layer", path});
    return components;
  };
  write("a.py");
  write("b.md");
  write("tests/c.py");
  const auto index = refresh_and_open(with_rules).index;
  EXPECT_EQ(index->get_all_components({.source_only = false}).size(), 3U);
  const auto components = index->get_all_components({.source_only = true});
  ASSERT_EQ(components.size(), 1U);
  EXPECT_EQ(components.front().path_pattern, "a.py");
}

}  // namespace
}  // namespace kestrix::index
