#include "kestrix/host/data_models/data_signals.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "kestrix/text/ascii.h"
#include "kestrix/host/data_models/data_classes.h"
#include "kestrix/host/data_models/data_ranking.h"
#include "kestrix/host/data_models/file_origin.h"

namespace kestrix {
namespace {

constexpr auto kNotData = std::to_array<std::string_view>(
    {"package.json", "package-lock.json", "npm-shrinkwrap.json", "composer.json", "composer.lock",
     "pnpm-lock.yaml", "pnpm-workspace.yaml", "tsconfig.json", "jsconfig.json", "lerna.json",
     "mkdocs.yml", "docker-compose.yml"});

constexpr auto kOriginNames =
    std::to_array<std::string_view>({"product", "aside", "migration", "generated", "vendored"});

}  // namespace

bool may_define_data(std::string_view path) {
  const auto name = path.substr(path.rfind('/') + 1);
  return data_language_of(path) != nullptr &&
         std::ranges::none_of(kNotData, [name](auto other) { return ascii::equals(name, other); });
}

DataSignals data_signals(std::string_view path, std::string_view text) {
  const auto* language = data_language_of(path);
  if (language == nullptr) return {};
  auto signals = count_definitions(*language, text);
  if (defines_data(signals)) signals.origin = origin_of(path, text);
  return signals;
}

std::string to_string(const DataSignals& signals) {
  return fmt::format("{} tables={} alterations={} entities={} schemas={}{} records={} columns={}",
                     kOriginNames.at(static_cast<std::size_t>(signals.origin)), signals.tables,
                     signals.alterations, signals.entities, signals.schemas,
                     signals.schema_file ? " (schema file)" : "", signals.records, signals.columns);
}

}  // namespace kestrix
