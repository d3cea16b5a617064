#pragma once

// The selection rules: pure functions over paths, file edges and counts. They keep no state, catch
// nothing, change no argument, and may run on any thread.
//
// A range of edges may be any input range whose elements `source_of`, `target_of` and `weight_of`
// accept. It is read at most once, in order, and of each edge only what the rule needs to know.
// Paths are ordered by code point, which for UTF-8 is byte order.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "kestrix/utils/counter.h"
#include "kestrix/utils/ordered_map.h"
#include "kestrix/utils/path_filter.h"
#include "kestrix/workers/wiki/page_sources/constants.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"
#include "kestrix/workers/wiki_cluster.h"
#include "kestrix/workers/wiki_split.h"

namespace kestrix {

/// Whether a path lies in a directory of test data. Whole directory names count, in any case
/// (ASCII); the file's own name does not.
bool is_fixture_path(std::string_view path);

/// Whether a path lies in a directory of archived documents, by the same test.
bool is_archived_path(std::string_view path);

/// Whether a path is a configuration file by its name (any case) or by a directory named exactly
/// "config" above it.
bool is_config_path(std::string_view path);

/// Whether a constant's or variable's name is that of a registry: one of the registry words, or
/// ending in "_" and one of them, in any case.
bool is_registry_name(std::string_view name);

/// The type of an edge's paths.
template <class Edges>
using EdgePath =
    std::remove_cvref_t<decltype(source_of(*std::ranges::begin(std::declval<Edges&>())))>;

/// The type in which results hold paths of type `Path`.
template <class Path>
using OwnedPath = std::remove_cvref_t<decltype(owned(std::declval<const Path&>()))>;

/// Per file, the files that depend on it, each with the summed weight of the dependency.
template <class Path, class Weight>
using DependentsOf = OrderedMap<Path, Counter<Path, Weight>>;

/// What `dependents_of` makes of a host's own edges. The paths are the edges' views.
using Dependents = DependentsOf<std::string_view, double>;

/// The design documents with the archived ones last, each group in its given order, cut to
/// `max_files` after the reordering. A negative `max_files` drops that many from the end.
template <class Path>
std::vector<Path> current_first(std::vector<Path> docs,
                                std::ptrdiff_t max_files = MAX_ASPECT_FILES) {
  std::stable_partition(docs.begin(), docs.end(),
                        [](const Path& path) { return !is_archived_path(text_of(path)); });
  return first_entries(std::move(docs), max_files);
}

/// The words that a code page's files add to its topic: their distinct stems in order, without
/// those that begin with "__", at most `limit`.
template <std::ranges::input_range Files>
auto topic_stems(Files&& files, std::ptrdiff_t limit = TOPIC_STEMS) {
  using Stem = std::remove_cvref_t<decltype(stem(*std::ranges::begin(files)))>;
  OrderedMap<Stem, std::monostate> distinct;
  for (auto&& path : files) distinct.try_emplace(stem(path));
  std::vector<Stem> stems;
  for (const auto& entry : distinct) {
    if (!text_of(entry.first).starts_with("__")) stems.push_back(entry.first);
  }
  return first_entries(std::move(stems), limit);
}

/// The retrieval topic of a code page: its title, then `topic_stems`, with single spaces between.
template <std::ranges::input_range Files>
std::string unit_topic(std::string_view title, Files&& files) {
  std::string topic(title);
  for (const auto& word : topic_stems(files)) topic.append(1, ' ').append(word);
  return topic;
}

namespace detail {

/// Sorts by a heap: a host's objects may compare as they like, and a comparison that contradicts
/// itself leads the usual sort out of the range.
template <class Items, class Less>
void sort_guarded(Items& items, const Less& less) {
  std::make_heap(items.begin(), items.end(), less);
  std::sort_heap(items.begin(), items.end(), less);
}

/// How many distinct roots each source reaches. Roots and sources are numbered alike, the roots
/// first, so that one look-up tells both what a path is and where it is counted.
template <class Path>
class Reach {
 public:
  struct Entry {
    Path source;
    std::size_t roots = 0;
  };

  template <class RootPaths>
  explicit Reach(const RootPaths& roots) {
    numbers_.max_load_factor(0.25F);  // most look-ups are of paths that are no root
    numbers_.reserve(std::ranges::size(roots));
    for (const auto& path : roots) number_of(Path(path));
    root_count_ = static_cast<std::uint32_t>(numbers_.size());
  }

  /// Takes the edge into account if it leads from no root into a root of another directory.
  template <class Edge>
  void add(const Edge& edge) {
    const Path target = target_of(edge);
    const auto found = numbers_.find(target);
    if (found == numbers_.end() || found->second >= root_count_) return;
    const std::uint32_t root = found->second;
    const Path source = source_of(edge);
    const std::uint32_t number = number_of(source);
    if (number < root_count_) return;
    if (directory_of(text_of(source)) != directory_of(text_of(target))) {
      dependencies_.push_back({number - root_count_, root});
    }
  }

  /// The sources that reach at least `least` roots, the farthest reach first, then by path.
  std::vector<Entry> ranked(std::size_t least) const {
    std::vector<Entry> entries;
    const std::vector<std::size_t> counts = distinct_roots();
    for (std::size_t source = 0; source < counts.size(); ++source) {
      if (counts[source] < least) continue;
      entries.push_back({numbers_.values_container()[root_count_ + source].first, counts[source]});
    }
    sort_guarded(entries, [](const Entry& a, const Entry& b) {
      return a.roots != b.roots ? a.roots > b.roots : text_of(a.source) < text_of(b.source);
    });
    return entries;
  }

 private:
  struct Dependency {
    std::uint32_t source;
    std::uint32_t root;
  };

  std::uint32_t number_of(const Path& path) {
    const auto next = static_cast<std::uint32_t>(numbers_.size());
    return numbers_.try_emplace(path, next).first->second;
  }

  // By source. Once the dependencies of a source lie together, it is enough to remember for each
  // root which source reached it last.
  std::vector<std::size_t> distinct_roots() const {
    const std::size_t sources = numbers_.size() - root_count_;
    std::vector<std::size_t> ends(sources + 1);  // at first where the one before it begins
    for (const Dependency& each : dependencies_) ++ends[each.source + 1];
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    std::vector<std::uint32_t> roots(dependencies_.size());
    for (const Dependency& each : dependencies_) roots[ends[each.source]++] = each.root;
    std::vector<std::size_t> last(root_count_, sources);
    std::vector<std::size_t> counts(sources);
    std::size_t at = 0;
    for (std::size_t source = 0; source < sources; ++source) {
      for (; at < ends[source]; ++at) {
        if (std::exchange(last[roots[at]], source) != source) ++counts[source];
      }
    }
    return counts;
  }

  OrderedMap<Path, std::uint32_t> numbers_;
  std::uint32_t root_count_ = 0;
  std::vector<Dependency> dependencies_;
};

}  // namespace detail

/// The dispatch that a class of entry points shares: the files that depend on at least a third of
/// the roots (and on two), most roots first, then by path, at most `limit`.
///
/// A dependency counts when it leads from a file that is no root into a root of another directory,
/// so a package that re-exports its own entry points is not their dispatch. With fewer than
/// `min_roots` roots, by which a third is measured, too, the result is empty and `edges` is not
/// touched. `roots` is any sized range of paths; its entries are counted as they come.
///
/// Linear in the edges, plus a sort of the files that pass the threshold.
template <std::ranges::sized_range RootPaths, std::ranges::input_range Edges>
auto dispatch_files(const RootPaths& roots, Edges&& edges, std::size_t limit = DISPATCH_FILES,
                    std::size_t min_roots = DISPATCH_MIN_ROOTS)
    -> std::vector<OwnedPath<EdgePath<Edges>>> {
  using Path = EdgePath<Edges>;
  const std::size_t count = std::ranges::size(roots);
  if (count < min_roots) return {};
  detail::Reach<Path> reach(roots);
  for (auto&& edge : edges) reach.add(edge);
  const auto least = std::max<std::size_t>(2, (count + min_roots - 1) / min_roots);
  std::vector<OwnedPath<Path>> files;
  for (const auto& entry : reach.ranked(least)) {
    if (files.size() == limit) break;
    files.push_back(owned(entry.source));
  }
  return files;
}

/// The type of what `dependents_of` returns. A host with maps of its own specialises it for its
/// paths, and brings overloads of the functions that read and write such a map.
template <class Path, class Weight>
struct DependentsType {
  using type = DependentsOf<Path, Weight>;
};

/// Adds `weight` to what `source` counts among the dependents of `target`.
template <class Path, class Weight>
void add_dependent(DependentsOf<Path, Weight>& dependents, const Path& target, const Path& source,
                   Weight weight) {
  dependents.try_emplace(target).first.value().add(source, weight);
}

/// Turns edges around: per file, who depends on it and how strongly. Keys and counts are inserted
/// in the order in which their first edge is met. An edge from a file to itself adds nothing; any
/// other creates its entries, whatever its weight.
template <std::ranges::input_range Edges>
auto dependents_of(Edges&& edges) {
  using Path = EdgePath<Edges>;
  using Weight = std::remove_cvref_t<decltype(weight_of(*std::ranges::begin(edges)))>;
  typename DependentsType<Path, Weight>::type dependents;
  for (auto&& edge : edges) {
    const Path source = source_of(edge);
    const Path target = target_of(edge);
    if (source != target) add_dependent(dependents, target, source, weight_of(edge));
  }
  return dependents;
}

/// The candidates of an examples page, at most `max_files`: those that the most others import
/// first, then those that reach the most production files, then by path. They are taken as given,
/// duplicates and all; a negative `max_files` drops that many from the end. Asks the host's
/// `is_test_path` only about targets of a candidate's edges that are no candidates themselves.
template <std::ranges::input_range Candidates, std::ranges::input_range Edges>
auto ranked_examples(Candidates&& paths, Edges&& edges, std::ptrdiff_t max_files) {
  using Path = EdgePath<Edges>;
  struct Tally {
    std::int64_t users = 0;    // imports by other candidates
    std::int64_t reached = 0;  // imports of production files
  };
  using Test = std::ranges::range_value_t<Candidates>;
  struct Candidate {
    Test path;
    Tally tally;
  };
  std::vector<Candidate> candidates;
  for (auto&& path : paths) candidates.push_back({Test(path), {}});
  OrderedMap<Path, Tally> tallies;
  tallies.max_load_factor(0.25F);  // many look-ups are of paths that are no candidate
  tallies.reserve(candidates.size());
  for (const auto& candidate : candidates) tallies.try_emplace(Path(candidate.path));
  for (auto&& edge : edges) {
    auto source = tallies.find(source_of(edge));
    if (source == tallies.end()) continue;
    const Path target = target_of(edge);
    if (auto found = tallies.find(target); found != tallies.end()) {
      ++found.value().users;
    } else if (!is_test_path(target)) {
      ++source.value().reached;
    }
  }
  for (auto& candidate : candidates) candidate.tally = tallies.find(Path(candidate.path))->second;
  const auto key = [](const Candidate& candidate) {
    return std::tuple(-candidate.tally.users, -candidate.tally.reached, text_of(candidate.path));
  };
  detail::sort_guarded(candidates,
                       [&](const Candidate& a, const Candidate& b) { return key(a) < key(b); });
  std::vector<Test> ranked;
  ranked.reserve(candidates.size());
  for (auto& candidate : candidates) ranked.push_back(std::move(candidate.path));
  return first_entries(std::move(ranked), max_files);
}

/// The test files that an examples page shows: test data left out, the others as `ranked_examples`.
template <std::ranges::input_range Tests, std::ranges::input_range Edges>
auto example_sources(Tests&& tests, Edges&& edges, std::ptrdiff_t max_files = MAX_ASPECT_FILES) {
  std::vector<std::ranges::range_value_t<Tests>> candidates;
  for (auto&& path : tests) {
    if (!is_fixture_path(text_of(path))) candidates.emplace_back(path);
  }
  return ranked_examples(candidates, std::forward<Edges>(edges), max_files);
}

// How `extension_sources` reads its maps. A host with maps of its own brings overloads.

/// The entries whose path `keep` accepts, in their order.
template <class Path, class Count, class Keep>
Counter<Path, Count> filtered(const Counter<Path, Count>& counts, Keep keep) {
  Counter<Path, Count> kept;
  for (const auto& [path, count] : counts) {
    if (keep(path)) kept.add(path, count);
  }
  return kept;
}

template <class Path, class Count>
bool holds(const Counter<Path, Count>& counts, const Path& path) {
  return counts.contains(path);
}

/// Whether at least one dependent is recorded for `path`, whatever its weight.
template <class Dependent, class Weight, class Path>
bool is_used(const DependentsOf<Dependent, Weight>& dependents, const Path& path) {
  const auto found = dependents.find(path);
  return found != dependents.end() && !found->second.empty();
}

/// The dependent of `path` with the highest weight, the first counted among equals; none when
/// nothing depends on it.
template <class Dependent, class Weight, class Path>
std::optional<OwnedPath<Dependent>> strongest_dependent(
    const DependentsOf<Dependent, Weight>& dependents, const Path& path) {
  if (!is_used(dependents, path)) return std::nullopt;
  return owned(dependents.find(path)->second.most_common(1).front().first);
}

/// The files of the extending page: at most `most_picked` files that hold a contract to implement
/// or a registry to add to, those that other files already use before those that nothing uses yet;
/// then at most `most_wiring` files where the picked registries are wired in, each the strongest
/// dependent of one of them unless it is picked itself.
///
/// Ranking within the used and the unused files is the host rule `extension_files`, which is called
/// once for each side.
template <class Counts, class DependentsMap>
auto extension_sources(const Counts& interfaces, const Counts& registries,
                       const DependentsMap& dependents,
                       std::size_t most_picked = EXTENSION_CONTRACTS,
                       std::ptrdiff_t most_wiring = EXTENSION_WIRING) {
  const auto strongest = [&](bool used) {
    const auto on_side = [&](const auto& path) { return is_used(dependents, path) == used; };
    const auto contracts = filtered(interfaces, on_side);
    return extension_files(contracts, filtered(registries, on_side), most_picked);
  };
  auto picked = strongest(true);
  std::ranges::move(strongest(false), std::back_inserter(picked));
  picked = first_entries(std::move(picked), static_cast<std::ptrdiff_t>(most_picked));

  decltype(picked) wiring;
  const auto listed = [](const auto& files, const auto& path) {
    return std::ranges::find(files, path) != files.end();
  };
  for (const auto& path : picked) {
    if (!holds(registries, path)) continue;
    auto user = strongest_dependent(dependents, path);
    if (user && !listed(picked, *user) && !listed(wiring, *user))
      wiring.push_back(std::move(*user));
  }
  wiring = first_entries(std::move(wiring), most_wiring);
  std::ranges::move(wiring, std::back_inserter(picked));
  return picked;
}

}  // namespace kestrix
