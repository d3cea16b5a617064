#include "kestrix/host/components.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::pair<std::string, std::string>> layers(const std::vector<std::string>& paths) {
  std::vector<std::pair<std::string, std::string>> found;
  for (const auto& component : components_of(paths)) {
    found.emplace_back(component.path_pattern, component.layer);
  }
  return found;
}

TEST(ComponentsOf, MakesOneOfEachFolderNamedForALayer) {
  EXPECT_THAT(layers({"src/infra/db.py", "src/Domain/order.py", "src/Domain/item.py",
                      "src/adapters/http.py", "src/application/run.py"}),
              ElementsAre(Pair("src/Domain/**", "domain"), Pair("src/adapters/**", "interface"),
                          Pair("src/application/**", "application"),
                          Pair("src/infra/**", "infrastructure")));
}

TEST(ComponentsOf, NestedLayersAreEachTheirOwn) {
  EXPECT_THAT(layers({"domain/orders/infrastructure/domain/a.ts"}),
              ElementsAre(Pair("domain/**", "domain"),
                          Pair("domain/orders/infrastructure/**", "infrastructure"),
                          Pair("domain/orders/infrastructure/domain/**", "domain")));
}

TEST(ComponentsOf, ReadsTheLastPartOfADottedProjectName) {
  EXPECT_THAT(layers({"src/Shop.Domain/Order.cs"}),
              ElementsAre(Pair("src/Shop.Domain/**", "domain")));
}

TEST(ComponentsOf, WantsWholeNamesOfFolders) {
  EXPECT_THAT(layers({"domain.py", "src/domains/a.py", "src/domain_model/a.py", "src/domain"}),
              IsEmpty());
}

}  // namespace
}  // namespace kestrix
