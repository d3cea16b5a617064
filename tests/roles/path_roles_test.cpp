#include "kestrix/roles/path_roles.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrix {
namespace {

// "role: evidence" of each role, joined by "; ".
std::string explained(std::string_view path) {
  std::string text;
  for (const RoleEvidence& piece : explain_path_roles(path)) {
    if (!text.empty()) text += "; ";
    text += std::string(name_of(piece.role)) + ": " + piece.text;
  }
  return text;
}

TEST(PathRoles, NameTheirEvidence) {
  constexpr std::pair<std::string_view, std::string_view> kCases[] = {
      {"src/shop/cart.py", ""},
      {"tests/cart.py", "test: below the test folder tests/"},
      {"src/cart_test.go", "test: named like a test"},
      {"tests/unit/golden/a.json",
       "test: below the test folder tests/; "
       "test data: below the folder of test data tests/unit/golden/"},
      {"pkg/testdata/in.go",
       "test: below the test folder pkg/testdata/; "
       "test data: below the folder of test data pkg/testdata/"},
      {"fixtures/initial.json", ""},
      {"examples/hello/main.go", "sample: below the folder of samples examples/"},
      {"src/samples/mixer.cc", ""},
      {"docs/conf.py", "documentation: below the folder of documentation docs/"},
      {"contrib/nginx.conf", "tool: below the folder of tools contrib/"},
      {"shop/contrib/auth/models.py", ""},
      {"pylint/testutils/output.py", "tool: below the folder of test tools pylint/testutils/"},
      {"db/migrate/20240131120000_add_carts.rb",
       "migration: below the folder of migrations db/migrate/"},
      {"db/V2__carts.sql", "migration: named like one"},
      {"db/schema.rb", ""},
      {"api/shop_pb2.py", "generated: named like one"},
      {"client/generated/api.ts", "generated: below client/generated/"},
      {"third_party/zlib/inflate.c", "vendored: below third_party/"},
      {"docs/old/plan.md",
       "documentation: below the folder of documentation docs/; archived: below docs/old/"},
      {"", ""},
      {"/", ""},
  };
  for (const auto& [path, evidence] : kCases) {
    EXPECT_EQ(explained(path), evidence) << path;
    EXPECT_EQ(path_roles(path), roles_of(explain_path_roles(path))) << path;
    EXPECT_EQ(path_roles(path).has(Role::kTest), is_test_by_path(path)) << path;
  }
}

TEST(PathRoles, AFolderOfSpecificationsIsNoFolderOfTests) {
  for (const auto* path : {"spec/openapi.yaml", "specs/shop.proto", "spec/v1/openapi.json",
                           "specs/api/paths/users.yaml", "spec/schema/types.graphql"}) {
    EXPECT_FALSE(is_test_by_path(path)) << path;
  }
  for (const auto* path : {"spec/models/user.rb", "spec/fixtures/users.yml", "spec/database.yml",
                           "specs/Api.cs", "test/openapi.yaml"}) {
    EXPECT_TRUE(is_test_by_path(path)) << path;
  }
}

}  // namespace
}  // namespace kestrix
