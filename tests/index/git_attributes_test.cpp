#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "kestrix/git/attributes.h"
#include "tests/index/scratch.h"

namespace kestrix::index {
namespace {

// "PATH: ATTRIBUTE: VALUE" for each path and attribute, as `git check-attr` has it.
std::string told(const GitAttributes& attributes, const std::vector<std::string>& paths) {
  std::string lines;
  for (const std::string& path : paths) {
    const GivenAttributes given = attributes.of(path);
    for (std::size_t at = 0; at < given.size(); ++at) {
      lines += fmt::format("{}: {}: {}\n", path, kGitAttributeNames[at],
                           !given[at] ? "unspecified" : (given[at]->on ? "set" : "unset"));
    }
  }
  return lines;
}

// Git tells values as they are written.
std::string as_switches(std::string text) {
  const auto replace = [&text](std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != text.npos; at = text.find(from)) {
      text.replace(at, from.size(), to);
    }
  };
  replace(": true\n", ": set\n");
  replace(": false\n", ": unset\n");
  return text;
}

// Each text is the .gitattributes of a folder of its own, and each path lies in every folder.
void expect_what_git_says(const std::vector<std::string>& texts,
                          const std::vector<std::string>& paths) {
  const Scratch scratch;
  scratch.run("git init -q repo");
  GitAttributes attributes;
  std::vector<std::string> all;
  std::string input;
  for (std::size_t at = 0; at < texts.size(); ++at) {
    const std::string folder = fmt::format("case{}", at);
    scratch.write("repo/" + folder + "/.gitattributes", texts[at]);
    attributes.add(folder, texts[at]);
    for (const std::string& path : paths) {
      all.push_back(folder + "/" + path);
      input += all.back() + "\n";
    }
  }
  scratch.write("paths", input);
  const std::string git =
      as_switches(scratch.run("git -C repo check-attr --stdin linguist-generated linguist-vendored "
                              "linguist-documentation < paths"));
  std::istringstream mine(told(attributes, all));
  std::istringstream gits(git);
  std::string line;
  std::string expected;
  while (std::getline(gits, expected)) {
    std::getline(mine, line);
    const auto number = std::stoul(expected.substr(4));
    EXPECT_EQ(line, expected) << texts[number];
  }
  EXPECT_FALSE(std::getline(mine, line));
}

TEST(GitAttributes, MatchAsGitDoes) {
  std::vector<std::string> texts;
  for (const std::string pattern :
       {"a.go",       "/a.go",   "x/a.go",   "/x/a.go",  "*.go",         "*.pb.go",   "x/*.go",
        "x/**",       "/x/**",   "**",       "/**",      "**/a.go",      "**/x/a.go", "x/**/a.go",
        "x",          "x/",      "x/y/",     "*",        "/*",           "*/*",       "[ab].go",
        "?.go",       "x*",      "x/y/**",   "\\a.go",   "a\\.go",       "!a.go",     "\\!a.go",
        "\"a b.go\"", "a b.go",  "\"a.go\"", "x/*/a.go", "\"\\141.go\"", "\"a.go",    "**/*.go",
        "x/**/*",     "**/y/**", "*.[g]o",   "[!x]*",    "x**a.go",      "**/",       "/",
        "A.go",       "a.g",     "*a.go",    "**/**",    "**/**/a.go"}) {
    texts.push_back(pattern + " linguist-generated\n");
  }
  expect_what_git_says(
      texts, {"a.go", "b.go", "a.pb.go", "x/a.go", "x/y/a.go", "x/y/b.pb.go", "y/x/a.go", "!a.go",
              "a b.go", "A.go", "x/y/z/a.go", "xa.go", "x.go/y"});
}

TEST(GitAttributes, ReadTheFormatAsGitDoes) {
  const std::string generated = "linguist-generated";
  std::vector<std::string> texts = {
      "*.go linguist-generated\na.go -linguist-generated\n",
      "a.go -linguist-generated\n*.go linguist-generated\n",
      "a.go linguist-generated=true linguist-vendored=false\r\n",
      "*.go linguist-generated\na.go !linguist-generated\n",
      "a.go linguist-generated -linguist-generated\n",
      "a.go -linguist-generated linguist-generated\n",
      "# a.go linguist-generated\n \t a.go\tlinguist-documentation\n",
      "[attr]made linguist-generated\na.go text eol=lf linguist-vendored\n",
      "a.go linguist-generated x/y\n",
      "a.go linguist-generated -\n",
      "a.go linguist-generatedly linguist-vendored.x\n",
      "a.go",
      "a.go linguist-generated",
      "\xEF\xBB\xBF"
      "a.go linguist-generated\n",
      "a.go " + std::string(2100, ' ') + "linguist-generated\n",
      "* linguist-vendored\nx/** linguist-generated\n*.go -linguist-vendored\n",
  };
  expect_what_git_says(texts, {"a.go", "b.go", "x/a.go"});
}

TEST(GitAttributes, DeeperFilesComeBeforeHigherOnes) {
  GitAttributes attributes;
  attributes.add("", "*.go linguist-generated linguist-vendored\nx/** linguist-documentation\n");
  attributes.add("x", "y/** -linguist-generated\n*.go text\n");
  attributes.add("x/y", "a.go !linguist-vendored\n");
  EXPECT_EQ(told(attributes, {"x/y/a.go"}),
            "x/y/a.go: linguist-generated: unset\n"
            "x/y/a.go: linguist-vendored: unspecified\n"
            "x/y/a.go: linguist-documentation: set\n");
  const auto given = attributes.of("x/y/a.go")[0];
  EXPECT_EQ(given->folder, "x");
  EXPECT_EQ(given->line, 1U);
}

TEST(GitAttributes, TakeBoundedTimeForHostileFiles) {
  std::string text;
  for (int line = 0; line < 3000; ++line) {
    text +=
        "**/a*a*a*a*a*a*b linguist-generated\nname" + std::to_string(line) + " linguist-vendored\n";
  }
  const auto start = std::chrono::steady_clock::now();
  GitAttributes attributes;
  for (int folder = 0; folder < 20; ++folder) attributes.add(fmt::format("{}", folder), text);
  const std::string path = "1/" + std::string(2000, 'a') + "/name2999";
  for (int time = 0; time < 20; ++time) EXPECT_TRUE(attributes.of(path)[1]);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace kestrix::index
