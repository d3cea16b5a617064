#include "kestrix/host/entry_points.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "kestrix/host/path_glob.h"
#include "kestrix/text/sorting.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

constexpr double kImportAlone = 1;

struct Directory {
  std::string_view path;
  std::vector<std::string_view> files;
  std::size_t reach = 0;        // files that the farthest reaching outsider uses
  std::string_view outsider{};  // the first that reaches so far
};

bool lies_below(std::string_view path, std::string_view directory) {
  return directory.empty() || (path.size() > directory.size() && path.starts_with(directory) &&
                               path[directory.size()] == '/');
}

// The directories of the files that take part in dependencies, and how far outsiders reach into
// each.
class Directories {
 public:
  explicit Directories(std::span<const std::string> paths) : paths_(paths.begin(), paths.end()) {}

  void count(std::span<const FileEdge> edges) {
    for (const FileEdge& edge : edges) {
      if (!paths_.contains(edge.source) || !paths_.contains(edge.target)) continue;
      place(edge.source);
      const std::size_t number = place(edge.target);
      Directory& directory = directories_[number];
      if (edge.weight <= kImportAlone || lies_below(edge.source, directory.path)) continue;
      auto& reached = reached_[{edge.source, number}];
      reached.insert(edge.target);
      note(directory, edge.source, reached.size());
    }
  }

  std::vector<Directory> take() && { return std::move(directories_); }

 private:
  using Pair = std::pair<std::string_view, std::size_t>;
  struct PairHash {
    std::size_t operator()(const Pair& pair) const noexcept {
      return std::hash<std::string_view>{}(pair.first) ^ (pair.second * 0x9E3779B97F4A7C15U);
    }
  };

  // Among equals the first by path, whatever the order of the edges.
  static void note(Directory& directory, std::string_view outsider, std::size_t reach) {
    if (reach < directory.reach) return;
    if (reach == directory.reach && directory.outsider <= outsider) return;
    directory.reach = reach;
    directory.outsider = outsider;
  }

  // Returns the number of the file's directory.
  std::size_t place(std::string_view path) {
    const std::string_view directory = directory_of(path);
    const auto [entry, fresh] = numbers_.try_emplace(directory, directories_.size());
    if (fresh) directories_.push_back({directory, {}});
    if (placed_.insert(path).second) directories_[entry->second].files.push_back(path);
    return entry->second;
  }

  std::unordered_set<std::string_view> paths_;
  std::unordered_set<std::string_view> placed_;
  std::unordered_map<std::string_view, std::size_t> numbers_;
  std::vector<Directory> directories_;
  std::unordered_map<Pair, std::unordered_set<std::string_view>, PairHash> reached_;
};

bool shows_a_class(const Directory& directory) {
  const std::size_t third = (directory.files.size() + DISPATCH_MIN_ROOTS - 1) / DISPATCH_MIN_ROOTS;
  return directory.reach >= std::max(DISPATCH_MIN_ROOTS, third);
}

EntryPointClass class_of(const Directory& directory) {
  EntryPointClass found{std::string(directory.path),
                        {directory.files.begin(), directory.files.end()},
                        fmt::format("{} uses {} of its {} files", directory.outsider,
                                    directory.reach, directory.files.size())};
  std::ranges::sort(found.roots);
  return found;
}

}  // namespace

EntryPointClass entry_points_matching(std::string_view pattern,
                                      std::span<const std::string> paths) {
  const PathGlob glob(pattern);
  EntryPointClass found{std::string(pattern), {}, "files that the pattern matches"};
  std::ranges::copy_if(paths, std::back_inserter(found.roots),
                       [&glob](const std::string& path) { return glob.matches(path); });
  sort_distinct(found.roots);
  return found;
}

std::vector<EntryPointClass> entry_point_classes(std::span<const std::string> paths,
                                                 std::span<const FileEdge> edges,
                                                 std::size_t limit) {
  Directories known(paths);
  known.count(edges);
  std::vector<Directory> directories = std::move(known).take();
  std::erase_if(directories, [](const Directory& directory) { return !shows_a_class(directory); });
  std::ranges::sort(directories, [](const Directory& a, const Directory& b) {
    return a.reach != b.reach ? a.reach > b.reach : a.path < b.path;
  });
  std::vector<EntryPointClass> classes(std::min(directories.size(), limit));
  std::transform(directories.begin(), directories.begin() + std::ssize(classes), classes.begin(),
                 class_of);
  return classes;
}

}  // namespace kestrix
