#pragma once

#include <string>
#include <vector>

#include "kestrix/host/flows/classes/path_patterns.h"
#include "kestrix/host/flows/dispatch/dispatch.h"

namespace kestrix {

/// Files alike that something outside of them calls.
struct Family {
  std::string glob{};                  ///< what they have in common
  std::string sign{};                  ///< what made them a class, in one line
  std::vector<index::FileId> files{};  ///< ascending
  double score = 0;
  PathPatterns::Key key = 0;  ///< of a family that hubs show
  index::FileId hub = 0;      ///< the one that names the most of it
  std::size_t named = 0;      ///< how many hubs name
  bool by_mark = false;       ///< whether a framework knows them by what they bear
  bool loose = false;         ///< whether they are many and have nothing but the sign in common
};

/// How much more a framework's word counts than that of the files' use.
inline constexpr double kHandlerWeight = 2.0;

/// The fewest files that are a family: two alike are chance.
inline constexpr std::size_t kLeastFamily = 3;

/// Families that one or a few files name nearly all of, and few others.
std::vector<Family> hub_families(const FlowEvidence& evidence, const PathPatterns& patterns);

/// Families that a framework finds by itself: by base type, annotation, place.
std::vector<Family> handler_families(const FlowEvidence& evidence, const PathPatterns& patterns);

/// Families of the files that have one thing in common which they are called through: a base type,
/// a decorator, a table to fill, a function to define.
std::vector<Family> type_families(const FlowEvidence& evidence, const PathPatterns& patterns);

/// Of all the best, none of which shares half of its files with another, best first.
std::vector<Family> families(const FlowEvidence& evidence);

}  // namespace kestrix
