#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "kestrix/syntax/query.h"

namespace kestrix::index {

/// One match of a query, its captures being a slice of the outline's.
struct OutlineMatch {
  std::uint16_t pattern;
  std::uint16_t nesting;  ///< how many "@members" nodes hold it
  std::uint32_t first_capture;
  std::uint32_t capture_count;
};

struct Outline {
  std::vector<OutlineMatch> matches;  ///< in source order of the nodes offered, then by pattern
  std::vector<TSQueryCapture> captures;

  std::span<const TSQueryCapture> captures_of(const OutlineMatch& match) const {
    return std::span(captures).subspan(match.first_capture, match.capture_count);
  }
};

/// Runs a query on the outline of a file: it is offered the children of the root and of every node
/// that it captures as "@enter" or "@members" (and of syntax errors among them). A pattern's root
/// is the node offered; below it the pattern reaches as deep as it says. Bodies that nothing enters
/// are not walked.
///
/// `hits` are byte offsets, ascending, of words that a pattern marked `anywhere` may start with or
/// hold: each node on the way to one is offered to those patterns, at any depth, until one of them
/// has captured something up to that place.
///
/// Costs the number of nodes offered and never recurses on the depth of the tree.
Outline outline_of(TSNode root, const Query& query, std::string_view text,
                   std::span<const std::uint32_t> hits);

}  // namespace kestrix::index
