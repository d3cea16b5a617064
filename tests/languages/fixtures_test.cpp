#include <gtest/gtest.h>
#include <re2/re2.h>
#include <tree_sitter/api.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "kestrix/languages/language.h"
#include "kestrix/languages/reading.h"
#include "tests/languages/facts_text.h"
#include "tests/languages/query_comparison.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> fixtures() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(KESTRIX_LANGUAGE_FIXTURES)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

std::string read_file(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Fixtures, EveryFactIsFoundAndNoOther) {
  for (const fs::path& path : fixtures()) {
    SCOPED_TRACE(path.string());
    const Language* language = language_of(path.filename().string());
    ASSERT_NE(language, nullptr);
    const std::string text = read_file(path);
    const auto facts = read_facts(*language, text);
    ASSERT_TRUE(facts.has_value());
    const auto expected = expected_facts(text);
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(facts_text(*facts), expected);
  }
}

TEST(Fixtures, EveryLanguageHasOne) {
  std::set<std::string_view> seen;
  for (const fs::path& path : fixtures()) {
    if (const Language* language = language_of(path.filename().string()))
      seen.insert(language->name);
  }
  for (const Language* language : languages()) EXPECT_TRUE(seen.contains(language->name));
}

// The queries are read by this program's own compiler; the parser library's knows more of what a
// grammar can hold.
TEST(Queries, AreValidForTheParserLibrary) {
  for (const Language* language : languages()) {
    SCOPED_TRACE(language->name);
    std::uint32_t offset = 0;
    TSQueryError error = TSQueryErrorNone;
    TSQuery* query =
        ts_query_new(language->grammar(), language->query.data(),
                     static_cast<std::uint32_t>(language->query.size()), &offset, &error);
    EXPECT_EQ(error, TSQueryErrorNone) << language->query.substr(offset, 60);
    ts_query_delete(query);
  }
}

TEST(Queries, MatchAsTheParserLibraryDoes) {
  for (const fs::path& path : fixtures()) {
    const std::string text = read_file(path);
    for (const Language* language : languages()) {
      EXPECT_EQ(test::query_difference(*language, text), "") << language->name << ' ' << path;
    }
  }
}

// The other way round, what a query captures and no reader states is an error of the query.
TEST(Queries, CaptureAllThatTheirReadersLookAt) {
  for (const Language* language : languages()) {
    for (const std::string_view capture : language->captures) {
      const auto captured = [&](const Language* other) {
        return other->read == language->read &&
               RE2::PartialMatch(other->query, "@" + std::string(capture) + "\\b");
      };
      EXPECT_TRUE(std::ranges::any_of(languages(), captured)) << language->name << ' ' << capture;
    }
  }
}

}  // namespace
}  // namespace kestrix::index
