#include "kestrix/syntax/outline.h"

#include <algorithm>
#include <utility>

#include "kestrix/syntax/query_match.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

// A node that a match wants to have entered and that the walk has not reached yet.
struct Entry {
  TSNode node;
  bool members;
};

class Walk {
 public:
  Walk(const Query& query, std::string_view text, std::span<const std::uint32_t> hits)
      : query_(query), matcher_(query, text), hits_(hits) {}

  Outline run(TSNode root) {
    TreeCursor cursor(root);
    levels_.push_back({true, 0});
    bool more = cursor.to_first_child();
    while (more) {
      const TSNode node = cursor.node();
      if (offer(node) && cursor.to_first_child()) {
        levels_.push_back(below_);
        continue;
      }
      more = cursor.to_next_sibling();
      while (!more && levels_.size() > 1) {
        cursor.to_parent();
        levels_.pop_back();
        more = cursor.to_next_sibling();
      }
    }
    return std::move(outline_);
  }

 private:
  // How the children of a node are looked at.
  struct Level {
    bool entered;
    std::uint16_t nesting;
  };

  // Whether the walk should go on below the node; `below_` then says how.
  bool offer(TSNode node) {
    below_ = {false, levels_.back().nesting};
    if (!ts_node_is_named(node)) return false;
    if (levels_.back().entered || has_hit(node)) match(node);
    take_entries(node);
    if (levels_.back().entered && ts_node_symbol(node) == kErrorSymbol) below_.entered = true;
    return below_.entered || has_entry(node) || has_hit(node);
  }

  void take_entries(TSNode node) {
    bool members = false;
    below_.entered = std::erase_if(entries_, [&](const Entry& entry) {
                       const bool own = ts_node_eq(entry.node, node);
                       members |= own && entry.members;
                       return own;
                     }) > 0;
    if (members && below_.nesting < UINT16_MAX) ++below_.nesting;
  }

  // Entries that the walk has passed without meeting them are dropped here.
  bool has_entry(TSNode node) {
    const std::uint32_t start = ts_node_start_byte(node);
    const std::uint32_t end = ts_node_end_byte(node);
    std::erase_if(entries_, [start](const Entry& e) { return ts_node_end_byte(e.node) <= start; });
    return std::ranges::any_of(entries_, [start, end](const Entry& entry) {
      return ts_node_start_byte(entry.node) >= start && ts_node_end_byte(entry.node) <= end;
    });
  }

  bool has_hit(TSNode node) {
    const std::uint32_t start = ts_node_start_byte(node);
    while (!hits_.empty() && hits_.front() < start) hits_ = hits_.subspan(1);
    return !hits_.empty() && hits_.front() < ts_node_end_byte(node);
  }

  void match(TSNode node) {
    for (const std::uint16_t pattern : query_.patterns_of(ts_node_symbol(node))) {
      if (!levels_.back().entered && !query_.pattern(pattern).anywhere) continue;
      matcher_.match(pattern, node, [&](const auto& captures) { add(pattern, captures); });
    }
  }

  void add(std::uint16_t pattern, const QueryMatcher::Captures& captures) {
    if (captures.empty()) return;
    std::uint32_t end = 0;
    bool facts = false;
    for (const TSQueryCapture& capture : captures) {
      end = std::max(end, ts_node_end_byte(capture.node));
      const CaptureRole role = query_.role(capture.index);
      facts |= role == CaptureRole::kFact;
      if (role != CaptureRole::kFact) {
        entries_.push_back({capture.node, role == CaptureRole::kMembers});
      }
    }
    if (!facts) return;
    if (query_.pattern(pattern).anywhere) {
      while (!hits_.empty() && hits_.front() < end) hits_ = hits_.subspan(1);
    }
    outline_.matches.push_back({pattern, levels_.back().nesting,
                                static_cast<std::uint32_t>(outline_.captures.size()),
                                static_cast<std::uint32_t>(captures.size())});
    outline_.captures.insert(outline_.captures.end(), captures.begin(), captures.end());
  }

  static constexpr TSSymbol kErrorSymbol = UINT16_MAX;

  const Query& query_;
  QueryMatcher matcher_;
  std::span<const std::uint32_t> hits_;
  Outline outline_;
  std::vector<Level> levels_;
  Level below_{};
  std::vector<Entry> entries_;
};

}  // namespace

Outline outline_of(TSNode root, const Query& query, std::string_view text,
                   std::span<const std::uint32_t> hits) {
  return Walk(query, text, hits).run(root);
}

}  // namespace kestrix::index
