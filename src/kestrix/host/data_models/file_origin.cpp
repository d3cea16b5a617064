#include "kestrix/host/data_models/file_origin.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <span>

#include "kestrix/files/classification.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using Names = std::span<const std::string_view>;

constexpr auto kSampleFolders = std::to_array<std::string_view>(
    {"example", "examples", "sample",   "samples",   "demo",       "demos",      "doc",
     "docs",    "docs_src", "tutorial", "tutorials", "playground", "benchmark",  "benchmarks",
     "bench",   "cookbook", "snippets", "website",   "quickstart", "quickstarts"});
constexpr auto kTestWords = std::to_array<std::string_view>(
    {"test", "tests", "testing", "testutil", "testutils", "testsupport"});
// At the top of a repository only: further down they may be a part of the product.
constexpr auto kToolFolders = std::to_array<std::string_view>(
    {"script", "scripts", "tool", "tools", "hack", "ci", "contrib", "misc", "etc", "build"});
constexpr auto kMigrationFolders =
    std::to_array<std::string_view>({"migrations", "migration", "migrate"});
constexpr auto kGeneratedFolders =
    std::to_array<std::string_view>({"generated", "__generated__", "_generated", "gen", "autogen"});
constexpr auto kVendorFolders =
    std::to_array<std::string_view>({"vendor", "_vendor", "_vendored", "third_party", "thirdparty",
                                     "third-party", "3rdparty", "node_modules"});
constexpr auto kSchemaDumps = std::to_array<std::string_view>(
    {"schema.rb", "schema.rs", "schema.sql", "structure.sql", "latest.sql"});

constexpr std::size_t kHeader = 1024;
constexpr std::size_t kShortText = 4096;
constexpr std::size_t kLongAverageLine = 400;

bool is_among(Names names, std::string_view text) {
  return std::ranges::any_of(names, [text](auto name) { return ascii::equals(text, name); });
}

std::string_view name_of(std::string_view path) { return path.substr(path.rfind('/') + 1); }

re2::StringPiece piece(std::string_view text) { return {text.data(), text.size()}; }

// "old_migrations" and "post_migrate" too; a "user_migration" may be what the product does.
bool holds_migrations(std::string_view folder) {
  if (is_among(kMigrationFolders, folder)) return true;
  const auto last = folder.substr(folder.find_last_of("-_.") + 1);
  return ascii::equals(last, "migrations") || ascii::equals(last, "migrate");
}

// A folder of what tests are written with: "test-utils", "testing_support". Its files are no tests,
// and nothing that the product consists of.
bool serves_tests(std::string_view folder) {
  while (!folder.empty()) {
    const auto end = std::min(folder.find_first_of("-_."), folder.size());
    if (is_among(kTestWords, folder.substr(0, end))) return true;
    folder.remove_prefix(std::min(end + 1, folder.size()));
  }
  return false;
}

// The folders' word: the one that takes a file furthest from the product. Below "src" a folder is
// named for what the product does, and a package may be called "samples".
DataOrigin origin_of_folders(std::string_view path) {
  auto origin = DataOrigin::kProduct;
  std::string_view parent;
  bool in_sources = false;
  for (std::size_t begin = 0, slash = 0; (slash = path.find('/', begin)) != std::string_view::npos;
       begin = slash + 1) {
    const auto folder = path.substr(begin, slash - begin);
    if (is_among(kVendorFolders, folder)) return DataOrigin::kVendored;
    if (is_among(kGeneratedFolders, folder)) origin = std::max(origin, DataOrigin::kGenerated);
    if (holds_migrations(folder) || (folder == "versions" && parent == "alembic")) {
      origin = std::max(origin, DataOrigin::kMigration);
    }
    const bool aside = (!in_sources && is_among(kSampleFolders, folder)) || serves_tests(folder) ||
                       (begin == 0 && (folder.starts_with('.') || is_among(kToolFolders, folder)));
    if (aside) origin = std::max(origin, DataOrigin::kAside);
    in_sources = in_sources || folder == "src";
    parent = folder;
  }
  return origin;
}

bool has_generated_name(std::string_view name) {
  static const RE2 pattern(R"((?i)_pb2_grpc\.py$|_pb2\.pyi$|[._]generated\.|\.gen\.\w+$|)"
                           R"(^zz_generated|modelsnapshot\.cs$)");
  return index::is_generated(name, {}) || RE2::PartialMatch(piece(name), pattern);
}

bool has_migration_name(std::string_view name) {
  static const RE2 pattern(
      R"(^[VUR]\d*[\d_.]*__\w+\.sql$|^(?:[a-z]+[_-])?\d{3,}(?:[_.-].*)?\.sql$|)"
      R"(^\d{12,14}_\w+\.(?:rb|php|ts|js)$)");
  return RE2::PartialMatch(piece(name), pattern);
}

// A comment near the top that begins with the notice, whether or not it forbids to edit.
bool has_generator_notice(std::string_view text) {
  static const RE2 pattern(
      R"((?im)^\s*(?://+|#+|/\*+|\*+|--+|;+|<!--|"""|''')\W*generated (?:by|with|from)\b)");
  return RE2::PartialMatch(piece(text.substr(0, kHeader)), pattern);
}

// Ends once there are too many lines for it, which in most texts is after a tenth of them.
bool is_squeezed(std::string_view text) {
  if (text.size() < kShortText) return false;
  auto lines_left = text.size() / (kLongAverageLine + 1);
  for (auto end = text.find('\n'); end != std::string_view::npos && lines_left > 0;
       end = text.find('\n', end + 1)) {
    --lines_left;
  }
  return lines_left > 0;
}

bool is_made_by_a_program(std::string_view name, std::string_view text) {
  return index::is_generated(name, text) || has_generator_notice(text) || is_squeezed(text);
}

}  // namespace

DataOrigin origin_of_path(std::string_view path) {
  const auto name = name_of(path);
  auto origin = origin_of_folders(path);
  if (is_among(kSchemaDumps, name)) {
    return origin == DataOrigin::kMigration ? DataOrigin::kProduct : origin;
  }
  if (has_migration_name(name)) origin = std::max(origin, DataOrigin::kMigration);
  return has_generated_name(name) ? std::max(origin, DataOrigin::kGenerated) : origin;
}

DataOrigin origin_of(std::string_view path, std::string_view text) {
  const auto origin = origin_of_path(path);
  const auto name = name_of(path);
  const bool made = !is_among(kSchemaDumps, name) && is_made_by_a_program(name, text);
  return made ? std::max(origin, DataOrigin::kGenerated) : origin;
}

}  // namespace kestrix
