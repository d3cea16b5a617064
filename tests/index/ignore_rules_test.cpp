#include "kestrix/git/ignore_rules.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "kestrix/text/wildmatch.h"

namespace kestrix::index {
namespace {

TEST(Wildmatch, FollowsGit) {
  struct Case {
    const char* pattern;
    const char* path;
    bool matches;
  };
  constexpr Case kCases[] = {
      {"*", "foo", true},          {"*", "foo/bar", false},     {"f*/b*", "foo/bar", true},
      {"**", "foo/bar", true},     {"**/bar", "bar", true},     {"**/bar", "foo/x/bar", true},
      {"**/bar", "foobar", false}, {"foo/**", "foo/a/b", true}, {"foo/**", "foo", false},
      {"a/**/b", "a/b", true},     {"a/**/b", "a/x/y/b", true}, {"a/**/b", "ab", false},
      {"a**/b", "ax/b", true},     {"a**/b", "a/x/b", false},   {"foo**bar", "foo/bar", false},
      {"?x", "ax", true},          {"?x", "/x", false},         {"[ab]x", "bx", true},
      {"[!ab]x", "bx", false},     {"[^ab]x", "cx", true},      {"[a-c]", "b", true},
      {"[]-]", "]", true},         {"[]-]", "-", true},         {"[[:digit:]]", "7", true},
      {"[[:digit:]]", "x", false}, {"[\\]]", "]", true},        {"[ab", "[ab", false},
      {"a[/]b", "a/b", false},     {"[!x]", "/", false},        {"\\*", "*", true},
      {"\\*", "x", false},         {"a\\", "a", false},         {"", "", true},
      {"**/**/c", "a/b/c", true},  {"a/**/**/c", "a/c", true},  {"*.t?t", "x.txt", true},
      {"a*aa", "aaa", true},       {"a*aa", "aa", false},       {"**/a/**/a.c", "a/a.c", true},
      {"*ab*b", "abab", true},     {"ab*ab", "ab", false},      {"**/app/**/x.ts", "x.ts", false},
  };
  for (const auto& [pattern, path, matches] : kCases) {
    EXPECT_EQ(Wildmatch(pattern).matches(path), matches) << pattern << " on " << path;
  }
  EXPECT_TRUE(Wildmatch("R[E]AD*", true).matches("readME"));
}

TEST(Wildmatch, TakesNoMoreThanItsLengthTimesThePaths) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Wildmatch(pattern + "b").matches(std::string(4000, 'a')));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(IgnoreRules, LeavesOutPatternsLongerThanAnyPath) {
  const std::string stars(5000, '*');
  EXPECT_EQ(IgnoreRules(stars).judge("a", false), Verdict::kNone);
  EXPECT_EQ(IgnoreRules(stars.substr(0, 4000)).judge("a", false), Verdict::kIgnored);
}

TEST(IgnoreRules, ReadsTheFormat) {
  struct Case {
    const char* text;
    const char* path;
    bool is_directory;
    Verdict verdict;
  };
  constexpr Verdict kIgnored = Verdict::kIgnored;
  constexpr Verdict kAdmitted = Verdict::kAdmitted;
  constexpr Verdict kNone = Verdict::kNone;
  constexpr Case kCases[] = {
      {"# foo\nfoo", "foo", false, kIgnored},
      {"#foo", "#foo", false, kNone},
      {"\\#foo", "#foo", false, kIgnored},
      {"\\!foo", "!foo", false, kIgnored},
      {"foo\n!foo", "foo", false, kAdmitted},
      {"!foo\nfoo", "foo", false, kIgnored},
      {"foo/", "foo", true, kIgnored},
      {"foo/", "foo", false, kNone},
      {"foo", "a/b/foo", false, kIgnored},
      {"/foo", "a/foo", false, kNone},
      {"a/foo", "a/foo", false, kIgnored},
      {"a/foo", "b/a/foo", false, kNone},
      {"foo  ", "foo", false, kIgnored},
      {"foo\\ ", "foo ", false, kIgnored},
      {"foo\r\nbar\r\n", "bar", false, kIgnored},
      {"\xEF\xBB\xBF"
       "foo",
       "foo", false, kIgnored},
      {"*.py", "x/y.py", false, kIgnored},
      {"/\n!/\n!\n \n", "x", false, kNone},
      {"*/foo", "a/foo", false, kIgnored},
      {"*/foo", "foo", false, kNone},
      {"Foo", "foo", false, kNone},
      {"a/", "x/a", true, kIgnored},
  };
  for (const auto& [text, path, is_directory, verdict] : kCases) {
    EXPECT_EQ(IgnoreRules(text).judge(path, is_directory), verdict) << text << " on " << path;
  }
  EXPECT_EQ(IgnoreRules("Foo\n*.PY", true).judge("x.py", false), kIgnored);
}

}  // namespace
}  // namespace kestrix::index
