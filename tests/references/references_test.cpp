#include "capi/answers/references.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "apps/page_sources/output.h"
#include "kestrix/index/refresh/indexer.h"
#include "tests/index/scratch.h"

namespace kestrix::program {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> languages() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(KESTRIX_REFERENCES)) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string content(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Each folder holds a small repository and all its references, written down by hand.
class References : public testing::TestWithParam<std::string> {};

TEST_P(References, AreThoseThatTheSourcesShow) {
  const index::Scratch scratch;
  const fs::path folder = fs::path(KESTRIX_REFERENCES) / GetParam();
  fs::copy(folder / "repository", scratch.path() / "repository", fs::copy_options::recursive);
  index::IndexOptions options;
  options.root = scratch.path() / "repository";
  options.file = scratch.path() / "index";
  const auto opened = index::refresh_and_open(options);
  const auto found =
      find_references(*opened.index, {.to = {}, .from = {}, .roles = {}, .self = true});
  EXPECT_EQ(references_as_tsv(found), content(folder / "expected.tsv"));
}

INSTANTIATE_TEST_SUITE_P(Languages, References, testing::ValuesIn(languages()),
                         [](const auto& language) { return language.param; });

}  // namespace
}  // namespace kestrix::program
