#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/workers/wiki/page_sources.h"
#include "tests/component/builders.h"

namespace kestrix::test {

/// A request to stop, as a program raises it: no std::exception.
struct StopRequest {};

/// What the host functions answer, and every call that they got, in order, with its arguments.
///
/// One world at a time is in force: the one made last. Paths are already normal unless they begin
/// with "./"; a path that holds "test" is a test path; a pattern "root/**" has the root "root".
struct World {
  World();
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  enum class Fault { kError, kStop };

  Paths planner;
  std::vector<SourceFileRecord> sources;
  std::vector<DocumentRecord> documents;
  std::map<std::pair<std::string, std::string>, SymbolSearch> searches;  ///< by kind and patterns
  std::unordered_map<SymbolId, std::string> symbol_files;
  std::vector<Component> components;
  std::map<std::string, std::string> texts;  ///< by joined path
  Edges edges;
  std::optional<Paths> ranked;  ///< the answer of the host's ranking rules; else their input's keys

  std::vector<std::string> calls;
  std::vector<std::string> warnings;
  std::vector<std::string> absorbed;

  std::size_t fail_at = SIZE_MAX;  ///< number of the call that fails
  Fault fault = Fault::kError;

  /// Records a call, and fails if it is the one that is told to.
  void called(std::string call);
};

class FakeRepository : public Repository {
 public:
  SymbolSearch search_symbols(std::string_view pattern, SymbolSearchOptions options) const override;
  SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const override;
  std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const override;
  FileGraph graph_among(std::span<const std::string_view> paths) const override;
  std::vector<Component> get_all_components(ComponentOptions options) const override;
};

class FakeHost : public PageSourcesMixin {
 public:
  std::vector<std::string> _planner_paths() const override;
  std::vector<DocumentRecord> _indexed_documents() const override;
  const Repository& repository() const override { return repository_; }
  const RepoRoot& repo_root() const override { return root_; }
  std::vector<SourceFileRecord> _source_files() const override;

 private:
  FakeRepository repository_;
  RepoRoot root_{"/repo"};
};

}  // namespace kestrix::test
