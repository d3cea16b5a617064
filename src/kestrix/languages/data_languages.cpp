#include "kestrix/languages/data_languages.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <vector>

#include "kestrix/text/ascii.h"

namespace kestrix {

// Each is defined in its own folder, with its relatives.
const DataLanguage& avro_data();
const DataLanguage& csharp_data();
const DataLanguage& ecmascript_data();
const DataLanguage& elixir_data();
const DataLanguage& go_data();
const DataLanguage& graphql_data();
const DataLanguage& java_data();
const DataLanguage& json_data();
const DataLanguage& kotlin_data();
const DataLanguage& php_data();
const DataLanguage& prisma_data();
const DataLanguage& proto_data();
const DataLanguage& python_data();
const DataLanguage& ruby_data();
const DataLanguage& rust_data();
const DataLanguage& scala_data();
const DataLanguage& sql_data();
const DataLanguage& swift_data();
const DataLanguage& thrift_data();
const DataLanguage& yaml_data();

namespace {

// Read by tools, and no data of the product.
constexpr auto kNotData = std::to_array<std::string_view>(
    {"package.json", "package-lock.json", "npm-shrinkwrap.json", "composer.json", "composer.lock",
     "pnpm-lock.yaml", "pnpm-workspace.yaml", "tsconfig.json", "jsconfig.json", "lerna.json",
     "mkdocs.yml", "docker-compose.yml"});

bool is_among(std::span<const std::string_view> names, std::string_view name) {
  return std::ranges::any_of(names, [name](auto other) { return ascii::equals(name, other); });
}

auto scans() {
  std::vector<std::unique_ptr<const DefinitionScan>> made;
  for (const auto* language :
       {&avro_data(),    &csharp_data(), &ecmascript_data(), &elixir_data(), &go_data(),
        &graphql_data(), &java_data(),   &json_data(),       &kotlin_data(), &php_data(),
        &prisma_data(),  &proto_data(),  &python_data(),     &ruby_data(),   &rust_data(),
        &scala_data(),   &sql_data(),    &swift_data(),      &thrift_data(), &yaml_data()}) {
    made.push_back(std::make_unique<const DefinitionScan>(*language));
  }
  return made;
}

}  // namespace

const DefinitionScan* definition_scan_of(std::string_view path) {
  static const auto all = scans();
  const auto name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  if (dot == name.npos || is_among(kNotData, name)) return nullptr;
  const auto extension = name.substr(dot + 1);
  for (const auto& scan : all) {
    if (is_among(scan->language().extensions, extension)) return scan.get();
  }
  return nullptr;
}

}  // namespace kestrix
