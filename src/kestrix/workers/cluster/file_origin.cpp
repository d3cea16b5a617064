#include "kestrix/workers/cluster/file_origin.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <span>

#include "kestrix/utils/ascii.h"

namespace kestrix {
namespace {

using Names = std::span<const std::string_view>;

constexpr auto kSampleFolders = std::to_array<std::string_view>(
    {"example", "examples", "sample",   "samples",   "demo",       "demos",      "doc",
     "docs",    "docs_src", "tutorial", "tutorials", "playground", "benchmark",  "benchmarks",
     "bench",   "cookbook", "snippets", "website",   "quickstart", "quickstarts"});
constexpr auto kMigrationFolders =
    std::to_array<std::string_view>({"migrations", "migration", "migrate"});
constexpr auto kGeneratedFolders = std::to_array<std::string_view>({"generated", "__generated__"});
constexpr auto kVendorFolders =
    std::to_array<std::string_view>({"vendor", "_vendor", "_vendored", "third_party", "thirdparty",
                                     "third-party", "3rdparty", "node_modules"});
constexpr auto kSchemaDumps = std::to_array<std::string_view>({"schema.rb", "structure.sql"});

constexpr std::size_t kHeader = 1024;
constexpr std::size_t kShortText = 4096;
constexpr std::size_t kLongAverageLine = 400;

bool is_among(Names names, std::string_view text) {
  return std::ranges::any_of(names, [text](auto name) { return ascii::equals(text, name); });
}

std::string_view name_of(std::string_view path) { return path.substr(path.rfind('/') + 1); }

re2::StringPiece piece(std::string_view text) { return {text.data(), text.size()}; }

// The folders' word: the one that takes a file furthest from the product.
DataOrigin origin_of_folders(std::string_view path) {
  auto origin = DataOrigin::kProduct;
  std::string_view parent;
  for (std::size_t begin = 0, slash = 0; (slash = path.find('/', begin)) != std::string_view::npos;
       begin = slash + 1) {
    const auto folder = path.substr(begin, slash - begin);
    if (is_among(kVendorFolders, folder)) return DataOrigin::kVendored;
    if (is_among(kGeneratedFolders, folder)) origin = std::max(origin, DataOrigin::kGenerated);
    if (is_among(kMigrationFolders, folder) || (folder == "versions" && parent == "alembic")) {
      origin = std::max(origin, DataOrigin::kMigration);
    }
    if (is_among(kSampleFolders, folder)) origin = std::max(origin, DataOrigin::kSample);
    parent = folder;
  }
  return origin;
}

bool has_generated_name(std::string_view name) {
  static const RE2 pattern(
      R"((?i)\.pb\.\w+$|_pb2(?:_grpc)?\.pyi?$|\.g\.(?:cs|dart)$|[._]generated\.|)"
      R"(^zz_generated|\.designer\.cs$|modelsnapshot\.cs$|\.min\.\w+$)");
  return RE2::PartialMatch(piece(name), pattern);
}

bool has_migration_name(std::string_view name) {
  static const RE2 pattern(R"(^[VUR]\d*[\d_.]*__\w+\.sql$|^\d{12,14}_\w+\.(?:rb|php|ts|js|sql)$)");
  return RE2::PartialMatch(piece(name), pattern);
}

bool has_generator_header(std::string_view text) {
  static const RE2 pattern(
      R"((?im)^\s*(?://+|#+|/\*+|\*+|--+|;+|<!--|"""|''')[^\n]*?)"
      R"((?:code generated|@generated\b|auto-?generated|automatically generated|)"
      R"(generated (?:by|from|file|code)\b[^\n]*do not (?:edit|modify|change)|)"
      R"(this file (?:is|was) generated|machine.generated))");
  return RE2::PartialMatch(piece(text.substr(0, kHeader)), pattern);
}

bool is_minified(std::string_view text) {
  if (text.size() < kShortText) return false;
  const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
  return text.size() / lines > kLongAverageLine;
}

}  // namespace

DataOrigin origin_of(std::string_view path, std::string_view text) {
  const auto name = name_of(path);
  auto origin = origin_of_folders(path);
  if (has_migration_name(name)) origin = std::max(origin, DataOrigin::kMigration);
  if (is_among(kSchemaDumps, name)) return origin;
  if (has_generated_name(name) || has_generator_header(text) || is_minified(text)) {
    origin = std::max(origin, DataOrigin::kGenerated);
  }
  return origin;
}

}  // namespace kestrix
