#include "kestrix/utils/path_filter.h"

#include <gtest/gtest.h>

#include <string_view>

#include "kestrix/workers/wiki_split.h"

namespace kestrix {
namespace {

constexpr std::string_view kTests[] = {
    // directories, whole and in any case
    "tests/helpers.py",
    "Tests/Helpers.cs",
    "src/test/java/shop/CartSupport.java",
    "lib/__tests__/a.js",
    "spec/models/user.rb",
    "packages/core/testing/harness.ts",
    "internal/parse/testdata/in.go",
    "pkg/test_data/schema.sql",
    "tests/fixtures/models.py",
    "e2e/login.ts",
    "benches/parse.rs",
    "t/0001-init.sh",
    "src/Shop.UnitTests/Builders.cs",
    "core/src/commonTest/kotlin/Fakes.kt",
    "core/src/testFixtures/java/Fakes.java",
    "ui/__mocks__/api.ts",
    "integration-tests/app/Main.kt",
    "packages/unit_tests/helpers.py",
    "src/snapshots/render.snap",
    "tests/sample/src/main/java/App.java",
    // names, in the manner of each language
    "app/test_views.py",
    "app/views_test.py",
    "app/unittest_utils.py",
    "app/conftest.py",
    "polls/tests.py",
    "src/parse.test.ts",
    "src/parse.spec.js",
    "src/button.cy.tsx",
    "app/app.e2e-spec.ts",
    "types/index.test-d.ts",
    "net/http_test.go",
    "util/testutils/directory_test.go",
    "tests/testutils/helpers.py",
    "src/lexer/tests.rs",
    "shop/CartTest.java",
    "shop/CartTests.java",
    "shop/CartTestCase.java",
    "shop/CartIT.java",
    "shop/CartTest.kt",
    "lib/cart_spec.rb",
    "lib/cart_test.rb",
    "lib/spec_helper.rb",
    "src/CartTest.php",
    "src/CartTests.cs",
    "util/arena_test.cc",
    "base/strings_unittest.cc",
};

constexpr std::string_view kProduct[] = {
    "",
    "pylint/testutils/lint_module_test_case.py",
    "pylint/testutils/functional/test_file.py",
    "testutils/configuration_test.py",
    "scrapy/utils/test.py",
    "scrapy/contracts/__init__.py",
    "src/flask/testing.py",
    "src/cargo/commands/test.rs",
    "shop/Latest.java",
    "shop/Contest.java",
    "org/junit/Test.java",
    "shop/AUDIT.java",
    "shop/UNIT.java",
    "src/main/java/org/frame/test/MockRequest.java",
    "src/main/java/org/frame/DataTest.java",
    "attest/sign.py",
    "spring-test/Runner.java",
    "speed_test/app.js",
    "contests/models.py",
    "latest/index.js",
    "lib/t/format.js",
    "test",
    "specification/openapi.yaml",
    "fixtures/initial.json",
    "app/_test.py",
    "src/.test.ts",
    "config/app.test.yml",
    "cmd/testserver/main.go",
    "src/testFixtures.kt",
    "Shop.Testing/Host.cs",
    "src/Protest/a.kt",
};

TEST(IsTestPath, AcceptsTheConventionsOfEachLanguage) {
  for (const auto path : kTests) EXPECT_TRUE(is_test_path(path)) << path;
}

TEST(IsTestPath, LeavesProductCodeThatSoundsLikeATest) {
  for (const auto path : kProduct) EXPECT_FALSE(is_test_path(path)) << path;
}

TEST(Stem, DropsTheDirectoryAndTheLastSuffix) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"src/parser.py", "parser"},
      {"a/b/Lexer.test.ts", "Lexer.test"},
      {"pkg/__init__.py", "__init__"},
      {".env", ".env"},
      {"a/.env.local", ".env"},
      {"Makefile", "Makefile"},
      {"a.d/x", "x"},
      {"odd.", "odd."},
      {"", ""},
  };
  for (const auto& [path, word] : cases) EXPECT_EQ(stem(path), word) << path;
}

}  // namespace
}  // namespace kestrix
