#include "kestrix/utils/path_filter.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using Names = std::span<const std::string_view>;

constexpr auto kTestDirectories = std::to_array<std::string_view>(
    {"test", "tests", "__tests__", "spec", "specs", "testing", "testdata", "test_data", "e2e",
     "benches", "__mocks__", "__fixtures__", "__snapshots__", "unittest", "unittests",
     "integrationtest", "integrationtests"});

constexpr auto kProductionTrees =
    std::to_array<std::string_view>({"java", "kotlin", "scala", "groovy", "resources"});

enum class Part { kWhole, kPrefix, kSuffix, kSuffixAfterLowerCase };

struct Convention {
  Part part;
  std::string_view text;

  constexpr bool admits(std::string_view stem) const {
    if (part == Part::kWhole) return stem == text;
    if (stem.size() <= text.size()) return false;
    if (part == Part::kPrefix) return stem.starts_with(text);
    if (!stem.ends_with(text)) return false;
    return part == Part::kSuffix || !ascii::is_upper(stem[stem.size() - text.size() - 1]);
  }
};

struct LanguageConventions {
  Names extensions;
  std::span<const Convention> conventions;
};

using enum Part;

constexpr auto kPythonExtensions = std::to_array<std::string_view>({"py", "pyi", "pyx"});
constexpr auto kPython = std::to_array<Convention>({{kPrefix, "test_"},
                                                    {kSuffix, "_test"},
                                                    {kPrefix, "unittest_"},
                                                    {kWhole, "conftest"},
                                                    {kWhole, "tests"}});

constexpr auto kScriptExtensions = std::to_array<std::string_view>(
    {"js", "jsx", "ts", "tsx", "mjs", "cjs", "mts", "cts", "vue", "svelte"});
constexpr auto kScript = std::to_array<Convention>({{kSuffix, ".test"},
                                                    {kSuffix, ".spec"},
                                                    {kSuffix, ".e2e"},
                                                    {kSuffix, ".e2e-spec"},
                                                    {kSuffix, ".cy"},
                                                    {kSuffix, ".test-d"},
                                                    {kSuffix, "_test"}});

constexpr auto kJvmExtensions = std::to_array<std::string_view>({"java", "kt", "scala", "groovy"});
constexpr auto kJvm = std::to_array<Convention>(
    {{kSuffix, "Test"}, {kSuffix, "Tests"}, {kSuffix, "TestCase"}, {kSuffixAfterLowerCase, "IT"}});

constexpr auto kRubyExtensions = std::to_array<std::string_view>({"rb"});
constexpr auto kRuby = std::to_array<Convention>({{kSuffix, "_spec"},
                                                  {kSuffix, "_test"},
                                                  {kWhole, "spec_helper"},
                                                  {kWhole, "rails_helper"},
                                                  {kWhole, "test_helper"}});

constexpr auto kRustExtensions = std::to_array<std::string_view>({"rs"});
constexpr auto kRust =
    std::to_array<Convention>({{kWhole, "tests"}, {kSuffix, "_test"}, {kSuffix, "_tests"}});

constexpr auto kNativeExtensions = std::to_array<std::string_view>({"cc", "cpp", "cxx", "c"});
constexpr auto kNative = std::to_array<Convention>({{kSuffix, "_test"}, {kSuffix, "_unittest"}});

constexpr auto kUnderscoreExtensions = std::to_array<std::string_view>({"go", "dart", "exs"});
constexpr auto kUnderscore = std::to_array<Convention>({{kSuffix, "_test"}});

constexpr auto kPluralExtensions = std::to_array<std::string_view>({"cs", "fs", "vb", "swift"});
constexpr auto kPlural = std::to_array<Convention>({{kSuffix, "Tests"}});

// Recorded output that a test compares with.
constexpr auto kSnapshotExtensions = std::to_array<std::string_view>({"snap"});
constexpr auto kSnapshot = std::to_array<Convention>({{kPrefix, ""}});

constexpr auto kPhpExtensions = std::to_array<std::string_view>({"php"});
constexpr auto kPhp = std::to_array<Convention>({{kSuffix, "Test"}});

constexpr auto kLanguages = std::to_array<LanguageConventions>({
    {kPythonExtensions, kPython},
    {kScriptExtensions, kScript},
    {kJvmExtensions, kJvm},
    {kRubyExtensions, kRuby},
    {kRustExtensions, kRust},
    {kNativeExtensions, kNative},
    {kUnderscoreExtensions, kUnderscore},
    {kPluralExtensions, kPlural},
    {kPhpExtensions, kPhp},
    {kSnapshotExtensions, kSnapshot},
});

bool is_among(Names names, std::string_view text) {
  return std::ranges::any_of(names, [text](auto name) { return ascii::equals(text, name); });
}

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

enum class Verdict { kTest, kProduction, kOpen };

// Walks the directories from the top and stops at the first that decides.
Verdict judge_directories(std::string_view path) {
  std::string_view before;
  std::string_view parent;
  for (std::size_t begin = 0, slash = 0; (slash = path.find('/', begin)) != std::string_view::npos;
       begin = slash + 1) {
    const auto piece = path.substr(begin, slash - begin);
    if (is_among(kTestDirectories, piece) || is_sort_of_tests(piece) ||
        is_dotted_test_project(piece) || is_test_source_set(parent, piece) ||
        (begin == 0 && piece == "t")) {
      return Verdict::kTest;
    }
    if (before == "src" && parent == "main" && is_among(kProductionTrees, piece)) {
      return Verdict::kProduction;
    }
    before = parent;
    parent = piece;
  }
  return Verdict::kOpen;
}

bool is_test_name(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return false;
  const auto extension = name.substr(dot + 1);
  const auto stem = name.substr(0, dot);
  const auto language = std::ranges::find_if(
      kLanguages, [extension](const auto& l) { return is_among(l.extensions, extension); });
  return language != kLanguages.end() &&
         std::ranges::any_of(language->conventions,
                             [stem](const Convention& c) { return c.admits(stem); });
}

// A Python package of tools for tests names them after tests; its own tests lie elsewhere.
bool is_test_tool(std::string_view path) {
  const bool in_tools =
      path.starts_with("testutils/") || path.find("/testutils/") != std::string_view::npos;
  return in_tools && path.ends_with(".py");
}

std::string_view name_of(std::string_view path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

bool is_test_path(std::string_view path) {
  const auto verdict = judge_directories(path);
  if (verdict != Verdict::kOpen) return verdict == Verdict::kTest;
  return is_test_name(name_of(path)) && !is_test_tool(path);
}

}  // namespace kestrix
