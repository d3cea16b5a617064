#include "kestrix/utils/error.h"

#include <gtest/gtest.h>

namespace kestrix {
namespace {

TEST(Describe, TellsTypeTextAndNestedCauses) {
  try {
    try {
      try {
        throw std::out_of_range("no row 7");
      } catch (...) {
        std::throw_with_nested(Error("/cache/index.sqlite is damaged"));
      }
    } catch (...) {
      std::throw_with_nested(std::runtime_error("the search failed"));
    }
  } catch (const std::exception& error) {
    const Failure failure = describe(error);
    EXPECT_NE(failure.type.find("std::runtime_error"), std::string::npos) << failure.type;
    EXPECT_EQ(failure.text, "the search failed");
    ASSERT_EQ(failure.causes.size(), 2U);
    EXPECT_NE(failure.causes[0].find("kestrix::Error"), std::string::npos);
    EXPECT_NE(failure.causes[0].find(": /cache/index.sqlite is damaged"), std::string::npos);
    EXPECT_EQ(failure.causes[1], "std::out_of_range: no row 7");
    EXPECT_FALSE(failure.trace.empty());
  }
}

TEST(Describe, SurvivesACauseThatIsNoException) {
  try {
    try {
      throw 7;
    } catch (...) {
      std::throw_with_nested(Error("outer"));
    }
  } catch (const std::exception& error) {
    EXPECT_EQ(describe(error).causes, std::vector<std::string>{"unknown exception"});
  }
}

}  // namespace
}  // namespace kestrix
