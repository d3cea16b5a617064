#include "kestrix/roles/test_paths.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "kestrix/languages/language.h"
#include "kestrix/roles/folder_names.h"
#include "kestrix/roles/other_languages.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

constexpr auto kTestFolders =
    name_set({"test", "tests", "__tests__", "testing", "testdata", "test_data", "e2e", "benches",
              "__mocks__", "__fixtures__", "__snapshots__", "unittest", "unittests",
              "integrationtest", "integrationtests", "regress"});
constexpr auto kSpecFolders = name_set({"spec", "specs"});
constexpr auto kProductionTrees = name_set({"java", "kotlin", "scala", "groovy", "resources"});

// A folder "spec" may also hold what an interface is specified in.
constexpr auto kInterfaceEndings =
    std::to_array<std::string_view>({".proto", ".graphql", ".graphqls", ".raml", ".tsp", ".smithy",
                                     ".thrift", ".avsc", ".avdl", ".xsd", ".wsdl"});
constexpr auto kInterfaceNames = name_set({"openapi", "swagger", "asyncapi", "api"});
constexpr auto kInterfaceFolders = name_set(
    {"openapi", "swagger", "asyncapi", "api", "apis", "schema", "schemas", "proto", "protos"});

// A folder of tests of some sort: "unit_tests", "integration-tests".
bool is_sort_of_tests(std::string_view piece) {
  return ascii::ends_with(piece, "-tests") || ascii::ends_with(piece, "_tests");
}

// A project folder such as "Shop.UnitTests".
bool is_dotted_test_project(std::string_view piece) {
  const auto dot = piece.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return false;
  const auto last = piece.substr(dot + 1);
  return last.ends_with("Tests") || last == "Test";
}

// A source set of a build tool: "src/androidTest", "src/testFixtures".
bool is_test_source_set(std::string_view parent, std::string_view piece) {
  return parent == "src" &&
         (piece == "testFixtures" || (piece.size() > 4 && piece.ends_with("Test")));
}

// Whether `rest`, the path below a folder "spec", is the text of a specified interface:
// "openapi.yaml", "v1/openapi.json", "api/paths/users.yaml", "shop.proto".
bool specifies_interface(std::string_view rest) {
  const auto name = index::base_name(rest);
  const auto ends_as = [name](std::string_view ending) { return ascii::ends_with(name, ending); };
  if (std::ranges::any_of(kInterfaceEndings, ends_as)) return true;
  if (!ends_as(".yaml") && !ends_as(".yml") && !ends_as(".json")) return false;
  const auto slash = rest.find('/');
  const bool in_folder = slash != rest.npos && is_among(kInterfaceFolders, rest.substr(0, slash));
  return in_folder || is_among(kInterfaceNames, name.substr(0, name.find_first_of(".-_")));
}

bool is_test_folder(std::string_view parent, std::string_view piece, std::string_view rest) {
  if (is_among(kTestFolders, piece) || is_sort_of_tests(piece) || is_dotted_test_project(piece) ||
      is_test_source_set(parent, piece)) {
    return true;
  }
  return is_among(kSpecFolders, piece) && !specifies_interface(rest);
}

bool is_test_name(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return false;
  const index::Conventions* conventions = conventions_of(name);
  return conventions != nullptr &&
         std::ranges::any_of(conventions->tests, [stem = name.substr(0, dot)](const auto& pattern) {
           return pattern.admits(stem);
         });
}

// A Python package of tools for tests names them after tests; its own tests lie elsewhere.
bool is_test_tool(std::string_view path) {
  const bool in_tools =
      path.starts_with("testutils/") || path.find("/testutils/") != std::string_view::npos;
  return in_tools && path.ends_with(".py");
}

}  // namespace

TestSign test_sign(std::string_view path) {
  std::string_view before;
  std::string_view parent;
  for (std::size_t begin = 0, slash = 0; (slash = path.find('/', begin)) != std::string_view::npos;
       begin = slash + 1) {
    const auto piece = path.substr(begin, slash - begin);
    if (is_test_folder(parent, piece, path.substr(slash + 1)) || (begin == 0 && piece == "t")) {
      return {TestSign::Kind::kFolder, path.substr(0, slash)};
    }
    const bool production =
        before == "src" && parent == "main" && is_among(kProductionTrees, piece);
    if (production) return {};
    before = parent;
    parent = piece;
  }
  if (!is_test_name(index::base_name(path)) || is_test_tool(path)) return {};
  return {TestSign::Kind::kName};
}

}  // namespace kestrix
