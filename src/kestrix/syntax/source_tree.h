#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "kestrix/syntax/lexis.h"
#include "kestrix/syntax/outline.h"
#include "kestrix/syntax/query.h"
#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/syntax/words.h"

namespace kestrix::index {

/// One match of a pattern of the language's query. Views the SourceTree that it comes from.
class Match {
 public:
  Match(const Query& query, const OutlineMatch& match, std::span<const TSQueryCapture> captures)
      : query_(&query), captures_(captures), nesting_(match.nesting) {}

  /// The first node that has the capture's name (written without "@"); none if there is none.
  std::optional<TSNode> node(std::string_view capture) const;

  /// How many `@members` nodes hold it: 0 at the top of the file.
  std::uint16_t nesting() const { return nesting_; }

 private:
  const Query* query_;
  std::span<const TSQueryCapture> captures_;
  std::uint16_t nesting_;
};

/// A parsed file as a language's read function sees it. Nodes and views live as long as it does.
class SourceTree {
 public:
  SourceTree(TSNode root, std::string_view text, const Lexis& lexis, const Query& query,
             Outline outline, WordCounts words)
      : root_(root),
        text_(text),
        lexis_(&lexis),
        query_(&query),
        outline_(std::move(outline)),
        words_(std::move(words)) {}

  TSNode root() const { return root_; }
  const Lexis& lexis() const { return *lexis_; }

  std::string_view text() const { return text_; }
  std::string_view text(std::uint32_t start, std::uint32_t end) const {
    return text_.substr(start, end - start);
  }
  std::string_view text(TSNode node) const {
    return text(ts_node_start_byte(node), ts_node_end_byte(node));
  }
  static std::uint32_t line(TSNode node) { return ts_node_start_point(node).row + 1; }

  /// Calls `visit(match)` for each match, in source order, then in the order of the query file.
  template <class Visit>
  void for_each_match(Visit visit) const {
    for (const OutlineMatch& match : outline_.matches) {
      visit(Match(*query_, match, outline_.captures_of(match)));
    }
  }

  /// How often each word is used: words of code (not of comments or strings) that are no members
  /// of something else and do not stand in a node captured as "@import".
  const WordCounts& words() const { return words_; }
  std::uint32_t uses(std::string_view name) const { return words_[name]; }

 private:
  TSNode root_;
  std::string_view text_;
  const Lexis* lexis_;
  const Query* query_;
  Outline outline_;
  WordCounts words_;
};

/// The type of a node as the grammar names it.
inline std::string_view type_of(TSNode node) { return ts_node_type(node); }

/// The first child in that field; none if there is none.
std::optional<TSNode> field_of(TSNode node, std::string_view field);

/// Calls `visit(child, field)` for each named child, with the field's name or "". Linear in the
/// number of children.
template <class Visit>
void for_each_child(TSNode node, Visit visit) {
  TreeCursor cursor(node);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (ts_node_is_named(cursor.node())) visit(cursor.node(), cursor.field());
  }
}

}  // namespace kestrix::index
