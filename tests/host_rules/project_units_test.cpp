#include "kestrix/workers/project_units.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kestrix {
namespace {

TEST(RootOfPattern, GivesTheDirectoryThatThePatternCovers) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"src/domain/**", "src/domain"},
      {"src/domain/*", "src/domain"},
      {"src/domain/**/*", "src/domain"},
      {"src/domain/**/*.py", "src/domain"},
      {"src/domain/", "src/domain"},
      {"src/domain", "src/domain"},
      {"./src//domain/**", "src/domain"},
      {"**", ""},
      {"**/*", ""},
      {"./**", ""},
      {R"(app/\[id\]/domain/**)", "app/[id]/domain"},
  };
  for (const auto& [pattern, root] : cases) EXPECT_EQ(root_of_pattern(pattern), root) << pattern;
}

TEST(RootOfPattern, GivesNoneForAPatternOfSeveralDirectories) {
  for (const auto pattern : {"", "src/**/domain/**", "*/domain/**", "src/{a,b}/**", "src/do?ain/**",
                             "src/*/**", "src/*_domain/**", "src/[ab]/**"}) {
    EXPECT_EQ(root_of_pattern(pattern), std::nullopt) << pattern;
  }
}

TEST(PatternOfRoot, IsUndoneByRootOfPattern) {
  for (const auto root : {"", "src/domain", "app/[id]/{x}", "we*ird?/do\\main", "**/domain"}) {
    EXPECT_EQ(root_of_pattern(pattern_of_root(root)), root) << pattern_of_root(root);
  }
}

TEST(MostSpecific, GivesTheDeepestRootAbove) {
  const RootMap roots{{"src", "1"}, {"src/domain", "2"}, {"lib/a.py", "3"}};
  const std::pair<std::string_view, std::optional<std::string>> cases[] = {
      {"src/domain/order/item.py", "2"},
      {"src/domain", "2"},
      {"src/domain_x/a.py", "1"},
      {"src/a.py", "1"},
      {"lib/a.py", "3"},
      {"lib/b.py", std::nullopt},
      {"source/a.py", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [path, value] : cases) EXPECT_EQ(most_specific(roots, path), value) << path;
}

TEST(MostSpecific, TheEmptyRootCoversEverything) {
  const RootMap roots{{"", "all"}, {"src", "src"}};
  EXPECT_EQ(most_specific(roots, "a.py"), "all");
  EXPECT_EQ(most_specific(roots, ""), "all");
  EXPECT_EQ(most_specific(roots, "src/a.py"), "src");
}

}  // namespace
}  // namespace kestrix
