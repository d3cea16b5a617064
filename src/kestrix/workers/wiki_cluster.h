#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "kestrix/utils/counter.h"
#include "kestrix/utils/ordered_map.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

/// One evidence-backed dependency: `source` depends on `target`.
///
/// The paths are views into a table that outlives the edge (the index's, or the caller's strings).
struct FileEdge {
  std::string_view source;
  std::string_view target;
  double weight = 0;  ///< strength of the evidence; sums are meaningful

  friend bool operator==(const FileEdge&, const FileEdge&) = default;
};
static_assert(std::is_trivially_copyable_v<FileEdge>);

/// How the rules read an edge. An edge type of another host brings overloads of its own, which
/// may compute a field at each read.
inline std::string_view source_of(const FileEdge& edge) { return edge.source; }
inline std::string_view target_of(const FileEdge& edge) { return edge.target; }
inline double weight_of(const FileEdge& edge) { return edge.weight; }

/// Per file, how many definitions of one sort it holds.
using PathCounts = Counter<std::string, std::int64_t>;

/// Text of each file, in the planner's order.
using PathTexts = OrderedMap<std::string, Text>;

/// The host's cap on the files of one aspect page; the linked host defines the value.
struct AspectFileLimit {
  operator std::ptrdiff_t() const;  // NOLINT(google-explicit-constructor): reads as a constant
};
inline constexpr AspectFileLimit MAX_ASPECT_FILES{};

/// The files that define data, strongest evidence first, then by path: DDL (also inside string
/// literals) or several data classes in one file.
std::vector<std::string> data_model_files(const PathTexts& texts);

/// The design documents among `documents`, best first, at most `max_files`.
std::vector<std::string> decision_docs(const std::vector<std::string>& documents,
                                       std::size_t max_files);

/// Ranks contract and registry files, best first, at most `limit`.
std::vector<std::string> extension_files(const PathCounts& contracts, const PathCounts& registries,
                                         std::size_t limit);

}  // namespace kestrix
