// A host of one's own, as small as it gets: a repository that is a table in memory. It defines the
// functions that the detectors call, derives the class whose members they read, and asks.

#include <kestrix/workers/wiki/page_sources.h>

#include <algorithm>
#include <array>
#include <iostream>

namespace {

using kestrix::FileEdge;

constexpr std::array<std::string_view, 8> FILES = {
    "app/main.py",      "app/errors.py",    "commands/add.py",   "commands/list.py",
    "commands/move.py", "config/base.yaml", "tests/test_add.py", "tests/test_move.py"};

constexpr std::array<FileEdge, 5> EDGES = {{
    {.source = "app/main.py", .target = "commands/add.py", .weight = 1},
    {.source = "app/main.py", .target = "commands/list.py", .weight = 1},
    {.source = "commands/move.py", .target = "app/errors.py", .weight = 2},
    {.source = "tests/test_add.py", .target = "commands/add.py", .weight = 1},
    {.source = "tests/test_move.py", .target = "commands/move.py", .weight = 3},
}};

}  // namespace

// The host functions.
namespace kestrix {

AspectFileLimit::operator std::ptrdiff_t() const { return 5; }
bool is_test_path(std::string_view path) { return path.starts_with("tests/"); }
std::string _norm(std::string_view path) { return std::string(path); }
Text _read_text(const RepoPath&, ReadTextOptions) { return {}; }
std::string stem(std::string_view path) { return std::filesystem::path(path).stem().string(); }
bool search(const InterfaceSignaturePattern&, std::string_view) { return false; }
std::vector<std::string> data_model_files(const PathTexts&) { return {}; }
std::vector<std::string> decision_docs(const std::vector<std::string>& documents, std::size_t) {
  return documents;
}
std::vector<std::string> extension_files(const PathCounts&, const PathCounts&, std::size_t) {
  return {};
}
std::optional<std::string> root_of_pattern(std::string_view) { return {}; }
std::optional<std::string> most_specific(const RootMap&, std::string_view) { return {}; }
void note_absorbed(const std::string&, const std::exception&) noexcept {}
void Logger::warning(std::string_view, const Failure&) const noexcept {}

ClusterInputs cluster_inputs(const Repository& repository, const PathSet& paths) {
  const std::vector<std::string_view> views(paths.begin(), paths.end());
  return {.files = {}, .units = {}, .edges = repository.graph_among(views).edges};
}

}  // namespace kestrix

namespace {

// One class, "NoteError", which app/errors.py declares.
class Index : public kestrix::Repository {
 public:
  kestrix::SymbolSearch search_symbols(std::string_view pattern,
                                       kestrix::SymbolSearchOptions) const override {
    if (pattern != "%Error") return {};
    return {.symbols = {{.id = 1, .name = "NoteError", .signature = {}}}, .total = 1};
  }
  kestrix::SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                                       kestrix::SymbolSearchOptions options) const override {
    return search_symbols(patterns.front(), options);
  }
  std::unordered_map<kestrix::SymbolId, std::string> get_file_paths_batch(
      std::span<const kestrix::Symbol>) const override {
    return {{1, "app/errors.py"}};
  }
  kestrix::FileGraph graph_among(std::span<const std::string_view> paths) const override {
    const auto holds = [&](std::string_view path) {
      return std::ranges::find(paths, path) != paths.end();
    };
    kestrix::FileGraph graph;
    std::ranges::copy_if(EDGES, std::back_inserter(graph.edges), [&](const FileEdge& edge) {
      return holds(edge.source) && holds(edge.target);
    });
    return graph;
  }
  std::vector<kestrix::Component> get_all_components(kestrix::ComponentOptions) const override {
    return {};
  }
};

class Generator : public kestrix::PageSourcesMixin {
 public:
  const kestrix::Repository& repository() const override { return index_; }
  const kestrix::RepoRoot& repo_root() const override { return root_; }
  std::vector<kestrix::DocumentRecord> _indexed_documents() const override { return {}; }

  std::vector<kestrix::SourceFileRecord> _source_files() const override {
    std::vector<kestrix::SourceFileRecord> records;
    records.reserve(FILES.size());
    for (const auto path : FILES) records.push_back({std::string(path)});
    return records;
  }
  std::vector<std::string> _planner_paths() const override {
    std::vector<std::string> paths(FILES.begin(), FILES.end());
    std::erase_if(paths, kestrix::is_test_path);
    return paths;
  }

 private:
  Index index_;
  kestrix::RepoRoot root_{"."};
};

void print(std::string_view page, const std::vector<std::string>& files) {
  std::cout << page << ':';
  for (const auto& file : files) std::cout << ' ' << file;
  std::cout << '\n';
}

}  // namespace

int main() {
  const Generator generator;
  const std::array<std::string, 3> commands = {"commands/add.py", "commands/list.py",
                                               "commands/move.py"};
  print("configuration", generator._config_files());
  print("errors", generator._exception_files());
  print("flows", generator._flow_dispatch(commands));
  print("examples", generator._example_files());
}
