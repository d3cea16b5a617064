#pragma once

#include <tree_sitter/api.h>

#include <string_view>
#include <vector>

#include "kestrix/syntax/query.h"

namespace kestrix::index {

/// Matches patterns against nodes. Keeps its buffers from one node to the next; for one thread.
class QueryMatcher {
 public:
  QueryMatcher(const Query& query, std::string_view text) : query_(query), text_(text) {}

  using Captures = std::vector<TSQueryCapture>;

  /// Calls `found(captures)` for every way in which the pattern matches with `node` at its root.
  /// Costs the number of children of the nodes that the pattern names, times the ways.
  template <class OnMatch>
  void match(std::uint16_t pattern, TSNode node, OnMatch found) {
    const Query::Pattern& wanted = query_.pattern(pattern);
    const auto done = [&] {
      if (admits(wanted)) found(captures_);
    };
    match_node(wanted.root, {node, 0, true}, Continuation(done));
  }

 private:
  struct Child {
    TSNode node;
    TSFieldId field;
    bool named;
  };

  // A view of a callable, for what is left to be matched.
  class Continuation {
   public:
    template <class Call>
    explicit Continuation(const Call& call)
        : call_(&call), run_([](const void* c) { (*static_cast<const Call*>(c))(); }) {}
    void operator()() const { run_(call_); }

   private:
    const void* call_;
    void (*run_)(const void*);
  };

  void match_node(const PatternNode& wanted, const Child& child, const Continuation& rest);
  void match_children(const PatternNode& parent, TSNode node, const Continuation& rest);
  void match_from(const PatternNode& parent, std::size_t at, std::size_t from, std::size_t end,
                  const Continuation& rest);
  bool fits(const PatternNode& wanted, const Child& child) const;
  bool between(std::size_t from, std::size_t to) const;
  bool admits(const Query::Pattern& pattern) const;

  const Query& query_;
  std::string_view text_;
  Captures captures_;
  std::vector<Child> children_;  // of the nodes on the way down, one after the other
};

}  // namespace kestrix::index
