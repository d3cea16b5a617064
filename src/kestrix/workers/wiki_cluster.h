#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/utils/counter.h"
#include "kestrix/utils/ordered_map.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

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

/// The files that define data, strongest evidence first, then by path, at most `MAX_ASPECT_FILES`.
///
/// A file defines data when it holds a DDL statement (also inside a string literal), a class that
/// is mapped to storage, a definition in a schema language, or at least two data classes. The
/// repository's own definitions come before those of its samples, then migrations, then generated
/// and vendored files. Where the caller has put in force what the code that names the definitions
/// says of their files, the product's are ranked by that.
///
/// Texts are read one at a time, each at most once, and only those whose name can hold data
/// definitions and that can still be among the best; none is kept. A text that cannot be read is ""
/// and defines nothing.
std::vector<std::string> data_model_files(const PathTexts& texts);

/// The design documents among `documents`, best first, at most `max_files`; each distinct path
/// once.
///
/// Judged from the paths, and where the caller has put it in force, from what an index knows of the
/// texts. A design document is prose in a folder named for such documents ("adr", "decisions",
/// "rfcs", "proposals", "design", "architecture" …), is called DESIGN, ARCHITECTURE or DECISIONS,
/// is one of a series (of padded numbers, of numbered or dated texts that share their headings, of
/// such folders with a design each), or has a proposal's headings. By its text prose counts, too,
/// that names source files, folders and types, that code names, or to which developers are pointed,
/// as far as it neither instructs nor reports. Templates, index pages, copies and stubs are none,
/// nor is what a test or a dependency brings along.
///
/// Order: numbered and dated entries, the highest number or newest date first; the other documents
/// of folders that hold entries; by their own name; in a proposal's form; those of the folders
/// "design", "architecture"; those by their texts, the most names of code first. Ties by path.
std::vector<std::string> decision_docs(const std::vector<std::string>& documents,
                                       std::size_t max_files);

/// Ranks contract and registry files, best first, at most `limit`; each path once, nothing for
/// empty maps.
///
/// A file that holds both sorts comes first, by the sum of its counts. The others alternate, a
/// contract file and then a registry file, each sort by its own count: a repository has many
/// contracts and few registries, and neither crowds the other out. What one sort leaves the other
/// fills. Ties by path.
std::vector<std::string> extension_files(const PathCounts& contracts, const PathCounts& registries,
                                         std::size_t limit);

}  // namespace kestrix
