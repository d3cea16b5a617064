#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PathCounts counts(std::initializer_list<std::pair<std::string_view, int>> entries) {
  PathCounts made;
  for (const auto& [path, count] : entries) made.add(path, count);
  return made;
}

TEST(ExtensionFiles, AlternatesContractsAndRegistriesEachByCount) {
  EXPECT_THAT(
      extension_files(counts({{"c1", 1}, {"c9", 9}, {"c5", 5}}), counts({{"r1", 1}, {"r2", 2}}), 6),
      ElementsAre("c9", "r2", "c5", "r1", "c1"));
}

TEST(ExtensionFiles, ManyContractsDoNotCrowdOutARegistry) {
  EXPECT_THAT(
      extension_files(counts({{"a", 9}, {"b", 8}, {"c", 7}, {"d", 6}}), counts({{"r", 1}}), 3),
      ElementsAre("a", "r", "b"));
}

TEST(ExtensionFiles, WhatHoldsBothComesFirst) {
  EXPECT_THAT(extension_files(counts({{"a", 9}, {"both", 1}, {"also", 1}}),
                              counts({{"also", 1}, {"r", 5}, {"both", 2}}), 6),
              ElementsAre("both", "also", "a", "r"));
}

TEST(ExtensionFiles, TiesGoByPathWhateverTheOrder) {
  EXPECT_THAT(extension_files(counts({{"b", 2}, {"a/b", 2}, {"B", 2}}), counts({}), 6),
              ElementsAre("B", "a/b", "b"));
}

TEST(ExtensionFiles, RespectsTheLimit) {
  EXPECT_THAT(extension_files(counts({{"a", 1}}), counts({{"b", 1}}), 0), IsEmpty());
  EXPECT_THAT(extension_files(counts({}), counts({}), 6), IsEmpty());
}

}  // namespace
}  // namespace kestrix
