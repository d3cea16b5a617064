#include "tests/languages/world.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "kestrix/languages/language.h"
#include "kestrix/languages/reading.h"
#include "kestrix/languages/resolver.h"

namespace kestrix::index {
namespace {

class WorldTable : public FileTable {
 public:
  explicit WorldTable(const World& world) {
    for (const auto& [path, text] : world) {
      if (text.find('\0') != text.npos) {
        binaries_.push_back(path);
        continue;
      }
      const Language* language = language_of(path);
      rows_.push_back(
          {path, text, language,
           language == nullptr ? FileFacts{} : read_facts(*language, text).value_or(FileFacts{})});
    }
  }
  std::size_t size() const override { return rows_.size(); }
  // Throws what no test expects when a resolver makes up an id.
  std::string_view path(FileId id) const override { return rows_.at(id).path; }
  std::optional<FileId> find(std::string_view path) const override {
    for (FileId id = 0; id < rows_.size(); ++id) {
      if (rows_[id].path == path) return id;
    }
    return std::nullopt;
  }
  bool has_binary(std::string_view path) const override {
    return std::ranges::find(binaries_, path) != binaries_.end();
  }
  const FileFacts& facts(FileId id) const override { return rows_[id].facts; }
  std::string_view language(FileId id) const override {
    return rows_[id].language == nullptr ? "" : rows_[id].language->name;
  }
  std::string read(FileId id) const override { return rows_[id].text; }

 private:
  struct Row {
    std::string path;
    std::string text;
    const Language* language;
    FileFacts facts;
  };
  std::vector<Row> rows_;
  std::vector<std::string> binaries_;
};

std::vector<std::string> edges(const World& world, bool weighted) {
  const WorldTable table(world);
  std::map<ResolverFactory, std::unique_ptr<Resolver>> resolvers;
  std::vector<std::string> found;
  std::uint32_t unresolved = 0;
  for (FileId file = 0; file < table.size(); ++file) {
    const Language* language = language_named(table.language(file));
    if (language == nullptr) continue;
    auto& resolver = resolvers[language->resolver];
    if (resolver == nullptr) resolver = language->resolver(table);
    const Resolution resolution = resolver->resolve(file);
    unresolved += resolution.unresolved;
    std::map<FileId, double> targets;
    for (const Dependency& d : resolution.dependencies) targets[d.target] += d.weight;
    for (const auto& [target, weight] : targets) {
      found.push_back(fmt::format("{} -> {}", table.path(file), table.path(target)));
      if (weighted) found.back() += fmt::format(" *{}", weight);
    }
  }
  if (unresolved > 0) found.push_back(fmt::format("unresolved {}", unresolved));
  return found;
}

}  // namespace

std::vector<std::string> edges_of(const World& world) { return edges(world, false); }
std::vector<std::string> weighted_edges_of(const World& world) { return edges(world, true); }

}  // namespace kestrix::index
