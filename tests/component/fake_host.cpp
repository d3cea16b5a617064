#include "tests/component/fake_host.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "kestrix/utils/best_effort.h"

namespace kestrix {
namespace test {
namespace {

World* world = nullptr;

std::string list(const auto& items) { return fmt::format("{}", fmt::join(items, " ")); }

Paths keys(const auto& map) {
  Paths paths;
  for (const auto& [path, value] : map) paths.push_back(path);
  return paths;
}

std::string counts(const PathCounts& map) {
  std::vector<std::string> items;
  for (const auto& [path, count] : map) items.push_back(fmt::format("{}={}", path, count));
  return "{" + list(items) + "}";
}

SymbolSearch answer(const std::string& query, SymbolSearchOptions options) {
  const std::string kind(to_string(options.kind));
  world->called(fmt::format("search_symbols({}, {}, {})", query, kind, options.limit));
  return world->searches[{kind, query}];
}

}  // namespace

World::World() { world = this; }
World::~World() { world = nullptr; }

void World::called(std::string call) {
  calls.push_back(std::move(call));
  if (calls.size() - 1 != fail_at) return;
  if (fault == Fault::kStop) throw StopRequest{};
  throw Error(calls.back() + " failed");
}

SymbolSearch FakeRepository::search_symbols(std::string_view pattern,
                                            SymbolSearchOptions options) const {
  return answer(std::string(pattern), options);
}

SymbolSearch FakeRepository::search_symbols(std::span<const std::string_view> patterns,
                                            SymbolSearchOptions options) const {
  return answer("[" + list(patterns) + "]", options);
}

std::unordered_map<SymbolId, std::string> FakeRepository::get_file_paths_batch(
    std::span<const Symbol> symbols) const {
  Paths names;
  for (const Symbol& symbol : symbols) names.push_back(symbol.name);
  world->called("get_file_paths_batch(" + list(names) + ")");
  return world->symbol_files;
}

FileGraph FakeRepository::graph_among(std::span<const std::string_view> /*paths*/) const {
  return {{}, world->edges};
}

std::vector<Component> FakeRepository::get_all_components(ComponentOptions options) const {
  world->called(fmt::format("get_all_components({})", options.source_only));
  return world->components;
}

std::vector<std::string> FakeHost::_planner_paths() const {
  world->called("_planner_paths");
  return world->planner;
}

std::vector<DocumentRecord> FakeHost::_indexed_documents() const {
  world->called("_indexed_documents");
  return world->documents;
}

std::vector<SourceFileRecord> FakeHost::_source_files() const {
  world->called("_source_files");
  return world->sources;
}

}  // namespace test

using test::world;

std::string _norm(std::string_view path) {
  world->called(fmt::format("_norm({})", path));
  return std::string(path.starts_with("./") ? path.substr(2) : path);
}

Text _read_text(const RepoPath& path, ReadTextOptions options) {
  world->called(fmt::format("_read_text({}, {})", path.path().string(), options.max_chars));
  return Text(world->texts[path.path().string()]);
}

bool is_test_path(std::string_view path) {
  world->called(fmt::format("is_test_path({})", path));
  return path.find("test") != std::string_view::npos;
}

std::optional<std::string> root_of_pattern(std::string_view pattern) {
  world->called(fmt::format("root_of_pattern({})", pattern));
  if (!pattern.ends_with("**")) return std::nullopt;
  return std::string(pattern.substr(0, pattern.find("/**")));
}

std::optional<std::string> most_specific(const RootMap& roots, std::string_view path) {
  world->called(fmt::format("most_specific({}, {})", test::list(test::keys(roots)), path));
  for (const auto& [root, value] : roots) {
    if (path.starts_with(root + "/")) return value;
  }
  return std::nullopt;
}

ClusterInputs cluster_inputs(const Repository& repository, const PathSet& paths) {
  test::Paths sorted(paths.begin(), paths.end());
  std::ranges::sort(sorted);
  world->called("cluster_inputs(" + test::list(sorted) + ")");
  return {{}, {}, repository.graph_among({}).edges};
}

std::vector<std::string> data_model_files(const PathTexts& texts) {
  std::vector<std::string> items;
  for (const auto& [path, text] : texts) items.push_back(path + "=" + text.str());
  world->called("data_model_files(" + test::list(items) + ")");
  return world->ranked.value_or(test::keys(texts));
}

std::vector<std::string> decision_docs(const std::vector<std::string>& documents,
                                       std::size_t max_files) {
  world->called(fmt::format("decision_docs({}, {})", test::list(documents), max_files));
  return world->ranked.value_or(documents);
}

std::vector<std::string> extension_files(const PathCounts& contracts, const PathCounts& registries,
                                         std::size_t limit) {
  world->called(fmt::format("extension_files({}, {}, {})", test::counts(contracts),
                            test::counts(registries), limit));
  auto files = test::keys(contracts);
  std::ranges::move(test::keys(registries), std::back_inserter(files));
  return files;
}

std::string stem(std::string_view path) {
  const auto name = path.substr(path.rfind('/') + 1);
  return std::string(name.substr(0, name.rfind('.')));
}

bool search(const InterfaceSignaturePattern& /*pattern*/, std::string_view signature) {
  world->called(fmt::format("search({})", signature));
  return signature.find("ABC") != std::string_view::npos;
}

AspectFileLimit::operator std::ptrdiff_t() const { return 4; }

void note_absorbed(const std::string& label, const std::exception& error) noexcept {
  world->absorbed.push_back(label + ": " + error.what());
}

void Logger::warning(std::string_view message, const Failure& failure) const noexcept {
  world->warnings.push_back(
      fmt::format("{}: {}: {}: {}", name(), message, failure.type, failure.text));
}

}  // namespace kestrix
