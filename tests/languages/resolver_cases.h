#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/languages/world.h"

namespace kestrix::index {

/// A repository and the edges that its imports make.
struct ResolverCase {
  std::string name;
  World world;
  std::vector<std::string> edges;  ///< as edges_of writes them, in any order
};

inline void check(const std::vector<ResolverCase>& cases) {
  for (const ResolverCase& test : cases) {
    SCOPED_TRACE(test.name);
    EXPECT_THAT(edges_of(test.world), testing::UnorderedElementsAreArray(test.edges));
  }
}

}  // namespace kestrix::index
