#include "kestrix/host/path_glob.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrix {
namespace {

using namespace std::string_literals;

struct Case {
  std::string pattern;
  std::vector<std::string> matched;
  std::vector<std::string> missed;
};

TEST(PathGlob, MatchesWholePathsAsGitDoes) {
  const std::vector<Case> cases{
      {"app/*.py", {"app/a.py", "app/.py"}, {"app/b/a.py", "x/app/a.py", "app/a.pyc", "app/aXpy"}},
      {"app/?.py", {"app/a.py"}, {"app/.py", "app/ab.py", "app//.py"}},
      {"**/run.py", {"run.py", "a/run.py", "a/b/run.py"}, {"a/xrun.py", "run.py/x"}},
      {"app/**", {"app/a", "app/a/b"}, {"app", "apps/a"}},
      {"a/**/z", {"a/z", "a/b/z", "a/b/c/z"}, {"az", "a/bz"}},
      {"a**/z", {"a/z", "abc/z"}, {"a/b/z"}},
      {"app/jobs", {"app/jobs", "app/jobs/a", "app/jobs/b/c"}, {"app/jobs.py", "app"}},
      {"app/jobs/", {"app/jobs/a", "app/jobs/b/c"}, {"app/jobs"}},
      {"./app/a.py", {"app/a.py"}, {"./app/a.py"}},
      {"[a-c]x", {"ax", "cx"}, {"dx", "x", "-x"}},
      {"[!a-c]x", {"dx", "-x"}, {"ax", "/x"}},
      {"a[/]b", {}, {"a/b"}},
      {"a[]-]b", {"a]b", "a-b"}, {"ab"}},
      {"[z-a]", {}, {"z", "a", "-"}},
      {"\\*.py", {"*.py"}, {"a.py"}},
      {"a[\\]]", {"a]"}, {"a\\"}},
      {"\xff*", {"\xff", "\xff\xfe"}, {"\xfe"}},
      {"*\n?", {"a\nb", "\n\n"}, {"ab"}},
      {"app/*/", {"app/a/b"}, {"app/a"}},
      {"A.py", {"A.py"}, {"a.py"}},
      {"app/{a,b/c}.py", {"app/a.py", "app/b/c.py"}, {"app/b.py", "app/{a,b/c}.py"}},
      {"{a,{b,c}d}{,x}", {"a", "ax", "bd", "cdx"}, {"b", "bx"}},
      {"a{b}c", {"a{b}c"}, {"abc"}},
      {"a{b,c", {"a{b,c"}, {"ab"}},
      {"a\\{b,c}", {"a{b,c}"}, {"ab"}},
      {"{jobs,tasks}", {"jobs/a", "tasks/b/c"}, {"job/a"}},
      {"a.b+(c)", {"a.b+(c)"}, {"aXb+(c)", "a.bb(c)"}},
  };
  for (const Case& each : cases) {
    const PathGlob glob(each.pattern);
    for (const auto& path : each.matched) EXPECT_TRUE(glob.matches(path)) << each.pattern << path;
    for (const auto& path : each.missed) EXPECT_FALSE(glob.matches(path)) << each.pattern << path;
  }
}

TEST(PathGlob, RejectsWhatIsNoPattern) {
  for (const auto& pattern : {""s, "./"s, "a["s, "[!"s, "[a-"s, "a\\"s, "[\\"s, "{a,}"s,
                              std::string(2500, '{') + "a,b" + std::string(2500, '}'),
                              "{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}"s}) {
    EXPECT_THROW(PathGlob{pattern}, BadGlob) << pattern;
  }
}

}  // namespace
}  // namespace kestrix
