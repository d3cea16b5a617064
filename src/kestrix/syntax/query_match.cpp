#include "kestrix/syntax/query_match.h"

#include <algorithm>

#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {

using Kind = PatternNode::Kind;

bool QueryMatcher::fits(const PatternNode& wanted, const Child& child) const {
  if (wanted.field != 0 && wanted.field != child.field) return false;
  switch (wanted.kind) {
    case Kind::kSymbol:
      return ts_node_symbol(child.node) == wanted.symbol;
    case Kind::kAnyNamed:
      return child.named;
    case Kind::kAny:
    case Kind::kOneOf:
      return true;
  }
  return false;
}

// NOLINTBEGIN(misc-no-recursion): as deep as a pattern, whatever the text

void QueryMatcher::match_node(const PatternNode& wanted, const Child& child,
                              const Continuation& rest) {
  if (!fits(wanted, child)) return;
  const std::size_t captured = captures_.size();
  for (const std::uint32_t name : wanted.names) captures_.push_back({child.node, name});
  if (wanted.kind == Kind::kOneOf) {
    for (const PatternNode& alternative : wanted.children) match_node(alternative, child, rest);
  } else if (wanted.children.empty() && wanted.absent.empty()) {
    rest();
  } else {
    match_children(wanted, child.node, rest);
  }
  captures_.resize(captured);
}

void QueryMatcher::match_children(const PatternNode& parent, TSNode node,
                                  const Continuation& rest) {
  const std::size_t first = children_.size();
  TreeCursor cursor(node);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    const TSNode child = cursor.node();
    children_.push_back({child, cursor.field_id(), ts_node_is_named(child)});
  }
  const auto lacks = [&](TSFieldId field) {
    return std::none_of(children_.begin() + static_cast<std::ptrdiff_t>(first), children_.end(),
                        [field](const Child& child) { return child.field == field; });
  };
  if (std::ranges::all_of(parent.absent, lacks)) {
    match_from(parent, 0, first, children_.size(), rest);
  }
  children_.resize(first);
}

// Whether only comments and unnamed nodes stand there.
bool QueryMatcher::between(std::size_t from, std::size_t to) const {
  return std::all_of(children_.begin() + static_cast<std::ptrdiff_t>(from),
                     children_.begin() + static_cast<std::ptrdiff_t>(to), [](const Child& child) {
                       return !child.named || ts_node_is_extra(child.node);
                     });
}

void QueryMatcher::match_from(const PatternNode& parent, std::size_t at, std::size_t from,
                              std::size_t end, const Continuation& rest) {
  if (at == parent.children.size()) return rest();
  const PatternNode& wanted = parent.children[at];
  bool any = false;
  for (std::size_t i = from; i < end; ++i) {
    if (wanted.first && !between(from, i)) break;
    const Child child = children_[i];  // the vector may move while what is below it is matched
    if (!fits(wanted, child) || (wanted.last && !between(i + 1, end))) continue;
    const auto next = [&, i] {
      any = true;
      match_from(parent, at + 1, i + 1, end, rest);
    };
    match_node(wanted, child, Continuation(next));
  }
  if (wanted.optional && !any) match_from(parent, at + 1, from, end, rest);
}

// NOLINTEND(misc-no-recursion)

bool QueryMatcher::admits(const Query::Pattern& pattern) const {
  const auto holds = [this](const Query::Predicate& predicate) {
    return std::ranges::all_of(captures_, [&](const TSQueryCapture& capture) {
      if (capture.index != predicate.capture) return true;
      const std::uint32_t start = ts_node_start_byte(capture.node);
      const std::string_view text = text_.substr(start, ts_node_end_byte(capture.node) - start);
      return std::ranges::find(predicate.texts, text) != predicate.texts.end();
    });
  };
  return std::ranges::all_of(pattern.predicates, holds);
}

}  // namespace kestrix::index
