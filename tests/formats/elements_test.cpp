#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kestrix/formats/xml.h"

namespace kestrix::index {
namespace {

TEST(XmlElements, HaveTheirAttributesAndTexts) {
  std::vector<std::string> found;
  for_each_element(
      "<p>\n<!-- <r I='no'/> -->\n<r I='a'\n J='b > c'>\n<K> d </K><L><M/></L></r></p>",
      [&](const XmlElement& element) {
        found.push_back(fmt::format("{} @{} I={} J={} K={} L={}", element.name, element.line,
                                    element.value("I"), element.value("J"), element.value("K"),
                                    element.value("L")));
      });
  EXPECT_THAT(
      found, testing::ElementsAre("p @1 I= J= K= L=", "r @3 I=a J=b > c K=d L=", "K @5 I= J= K= L=",
                                  "L @5 I= J= K= L=", "M @5 I= J= K= L="));
}

}  // namespace
}  // namespace kestrix::index
