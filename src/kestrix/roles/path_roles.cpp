#include "kestrix/roles/path_roles.h"

#include <fmt/format.h>
#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "kestrix/roles/folder_names.h"
#include "kestrix/roles/generated.h"
#include "kestrix/roles/test_paths.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

constexpr auto kTestDataFolders =
    name_set({"golden", "goldens", "fixture", "fixtures", "__fixtures__", "testdata", "test_data",
              "test-data", "__snapshots__", "snapshots", "cassettes", "corpus"});
constexpr auto kSampleFolders =
    name_set({"example", "examples", "sample", "samples", "demo", "demos", "tutorial", "tutorials",
              "playground", "benchmark", "benchmarks", "bench", "cookbook", "snippets",
              "quickstart", "quickstarts"});
constexpr auto kDocumentationFolders =
    name_set({"doc", "docs", "docs_src", "documentation", "website"});
constexpr auto kTestWords =
    name_set({"test", "tests", "testing", "testutil", "testutils", "testsupport"});
// At the top of a repository only: further down they may be a part of the product.
constexpr auto kToolFolders = name_set(
    {"script", "scripts", "tool", "tools", "hack", "ci", "contrib", "misc", "etc", "build"});
constexpr auto kMigrationFolders = name_set({"migrations", "migration", "migrate"});
constexpr auto kGeneratedFolders =
    name_set({"generated", "__generated__", "_generated", "gen", "autogen"});
constexpr auto kVendorFolders =
    name_set({"vendor", "_vendor", "_vendored", "third_party", "thirdparty", "third-party",
              "3rdparty", "3rd_party", "3rd-party", "node_modules", "bower_components"});
constexpr auto kArchiveFolders =
    name_set({"archive", "archived", "old", "superseded", "deprecated", "obsolete"});

// "old_migrations" and "post_migrate" too; a "user_migration" may be what the product does.
bool holds_migrations(std::string_view folder, std::string_view parent) {
  if (is_among(kMigrationFolders, folder)) return true;
  const auto last = folder.substr(folder.find_last_of("-_.") + 1);
  return ascii::equals(last, "migrations") || ascii::equals(last, "migrate") ||
         (folder == "versions" && parent == "alembic");
}

bool has_migration_name(std::string_view name) {
  constexpr auto kEndings = std::to_array<std::string_view>({".sql", ".rb", ".php", ".ts", ".js"});
  const auto ends_name = [name](std::string_view ending) { return name.ends_with(ending); };
  if (std::ranges::none_of(kEndings, ends_name)) return false;
  static const RE2 pattern(
      R"(^[VUR]\d*[\d_.]*__\w+\.sql$|^(?:[a-z]+[_-])?\d{3,}(?:[_.-].*)?\.sql$|)"
      R"(^\d{12,14}_\w+\.(?:rb|php|ts|js)$)");
  return RE2::PartialMatch(re2::StringPiece(name.data(), name.size()), pattern);
}

}  // namespace

PathSigns::PathSigns(std::string_view path) {
  add_test_signs(path);
  add_folder_signs(path);
  add_name_signs(path);
  if (is_schema_dump(path)) roles_.remove(Role::kMigration);
}

void PathSigns::add(Role role, std::string_view what, std::string_view folder, bool refutable) {
  if (roles_.has(role)) return;
  roles_.add(role);
  signs_[static_cast<std::size_t>(role)] = {what, folder, refutable};
}

std::vector<RoleEvidence> PathSigns::evidence() const {
  std::vector<RoleEvidence> list;
  for (const Role role : kRoles) {
    if (!roles_.has(role)) continue;
    const auto& [what, folder, refutable] = sign(role);
    list.push_back(
        {role, folder.empty() ? std::string(what) : fmt::format("{} {}/", what, folder)});
  }
  return list;
}

void PathSigns::add_test_signs(std::string_view path) {
  const TestSign sign = test_sign(path);
  if (sign.kind == TestSign::Kind::kName) add(Role::kTest, "named like a test");
  if (sign.kind != TestSign::Kind::kFolder) return;
  add(Role::kTest, "below the test folder", sign.folder);
  for_each_folder_down(path, [&](std::string_view piece, std::string_view folder) {
    const bool data = folder.size() >= sign.folder.size() && is_among(kTestDataFolders, piece);
    if (data) add(Role::kTestData, "below the folder of test data", folder);
    return !data;
  });
}

// Below "src" a folder is named for what the product does, and a package may be called "samples".
void PathSigns::add_folder_signs(std::string_view path) {
  std::string_view parent;
  bool in_sources = false;
  for_each_folder_down(path, [&](std::string_view piece, std::string_view folder) {
    const bool top = parent.empty() && piece.size() == folder.size();
    if (is_among(kVendorFolders, piece)) add(Role::kVendored, "below", folder);
    if (is_among(kGeneratedFolders, piece)) add(Role::kGenerated, "below", folder);
    if (is_among(kArchiveFolders, piece)) add(Role::kArchived, "below", folder, true);
    if (holds_migrations(piece, parent)) {
      add(Role::kMigration, "below the folder of migrations", folder);
    }
    if (!in_sources && is_among(kSampleFolders, piece)) {
      add(Role::kSample, "below the folder of samples", folder, true);
    }
    if (!in_sources && is_among(kDocumentationFolders, piece)) {
      add(Role::kDocumentation, "below the folder of documentation", folder, true);
    }
    // Its files are no tests, and nothing that the product consists of.
    if (!roles_.has(Role::kTest) && is_named_for_tests(piece))
      add(Role::kTool, "below the folder of test tools", folder);
    if (top && (piece.starts_with('.') || is_among(kToolFolders, piece))) {
      add(Role::kTool, "below the folder of tools", folder, !piece.starts_with('.'));
    }
    in_sources = in_sources || piece == "src";
    parent = piece;
    return true;
  });
}

void PathSigns::add_name_signs(std::string_view path) {
  if (has_migration_name(index::base_name(path))) add(Role::kMigration, "named like one");
  if (has_generated_name(path)) add(Role::kGenerated, "named like one");
}

Roles path_roles(std::string_view path) { return PathSigns(path).roles(); }

std::vector<RoleEvidence> explain_path_roles(std::string_view path) {
  return PathSigns(path).evidence();
}

bool is_test_by_path(std::string_view path) {
  return test_sign(path).kind != TestSign::Kind::kNone;
}

bool is_named_for_tests(std::string_view name) {
  while (!name.empty()) {
    const auto end = std::min(name.find_first_of("-_."), name.size());
    if (is_among(kTestWords, name.substr(0, end))) return true;
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return false;
}

}  // namespace kestrix
