#include "kestrix/index/outline.h"

#include <algorithm>
#include <compare>
#include <memory>
#include <ranges>
#include <tuple>

#include "kestrix/index/tree_cursor.h"

namespace kestrix::index {
namespace {

constexpr std::uint32_t kMatchLimit = 256;

struct CursorDeleter {
  void operator()(TSQueryCursor* cursor) const { ts_query_cursor_delete(cursor); }
};

std::unique_ptr<TSQueryCursor, CursorDeleter> new_query_cursor() {
  std::unique_ptr<TSQueryCursor, CursorDeleter> cursor(ts_query_cursor_new());
  ts_query_cursor_set_match_limit(cursor.get(), kMatchLimit);
  return cursor;
}

// A node that a match wants to have entered and that the walk has not reached yet.
struct Entry {
  TSNode node;
  bool members;
};

class Walk {
 public:
  Walk(const Query& query, std::string_view text, std::span<const std::uint32_t> hits)
      : query_(query), text_(text), hits_(hits), query_cursor_(new_query_cursor()) {}

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
    sort_matches();
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
    if (!take_entry(node)) {
      if (levels_.back().entered || has_hit(node)) match(node);
      take_entry(node);
    }
    if (levels_.back().entered && ts_node_symbol(node) == kErrorSymbol) below_.entered = true;
    return below_.entered || has_entry(node) || has_hit(node);
  }

  bool take_entry(TSNode node) {
    const auto found = std::ranges::find_if(
        entries_, [node](const Entry& entry) { return ts_node_eq(entry.node, node); });
    if (found == entries_.end()) return false;
    below_.entered = true;
    if (found->members && below_.nesting < UINT16_MAX) ++below_.nesting;
    entries_.erase(found);
    return true;
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

  // The range of one byte keeps the query from walking the body: it goes on below only for
  // patterns that have begun.
  void match(TSNode node) {
    const std::uint32_t start = ts_node_start_byte(node);
    if (start == ts_node_end_byte(node)) return;
    ts_query_cursor_set_byte_range(query_cursor_.get(), start, start + 1);
    ts_query_cursor_exec(query_cursor_.get(), query_.get(), node);
    TSQueryMatch found;
    while (ts_query_cursor_next_match(query_cursor_.get(), &found)) {
      const bool anywhere = query_.anywhere(found.pattern_index);
      if ((levels_.back().entered || anywhere) && query_.admits(found, text_)) {
        add(found, anywhere);
      }
    }
  }

  void add(const TSQueryMatch& found, bool anywhere) {
    const std::span captures(found.captures, found.capture_count);
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
    if (anywhere) {
      while (!hits_.empty() && hits_.front() < end) hits_ = hits_.subspan(1);
    }
    outline_.matches.push_back(
        {ts_node_start_byte(captures.front().node), found.pattern_index, levels_.back().nesting,
         static_cast<std::uint32_t>(outline_.captures.size()), found.capture_count});
    outline_.captures.insert(outline_.captures.end(), captures.begin(), captures.end());
  }

  using Place = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;
  static Place place(const TSQueryCapture& capture) {
    return {ts_node_start_byte(capture.node), ts_node_end_byte(capture.node), capture.index};
  }

  std::strong_ordering compare(const OutlineMatch& a, const OutlineMatch& b) const {
    if (const auto order = std::tie(a.start, a.pattern) <=> std::tie(b.start, b.pattern);
        order != 0)
      return order;
    const auto places_a = outline_.captures_of(a) | std::views::transform(place);
    const auto places_b = outline_.captures_of(b) | std::views::transform(place);
    return std::lexicographical_compare_three_way(places_a.begin(), places_a.end(),
                                                  places_b.begin(), places_b.end());
  }

  // A node that starts where an entered one does is offered twice, so matches may repeat.
  void sort_matches() {
    auto& matches = outline_.matches;
    std::ranges::stable_sort(matches,
                             [this](const auto& a, const auto& b) { return compare(a, b) < 0; });
    const auto repeated = std::ranges::unique(
        matches, [this](const auto& a, const auto& b) { return compare(a, b) == 0; });
    matches.erase(repeated.begin(), repeated.end());
  }

  static constexpr TSSymbol kErrorSymbol = UINT16_MAX;

  const Query& query_;
  std::string_view text_;
  std::span<const std::uint32_t> hits_;
  std::unique_ptr<TSQueryCursor, CursorDeleter> query_cursor_;
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
