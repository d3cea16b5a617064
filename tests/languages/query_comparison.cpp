#include "tests/languages/query_comparison.h"

#include <fmt/format.h>
#include <tree_sitter/api.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "kestrix/languages/language.h"
#include "kestrix/syntax/parsed_text.h"
#include "kestrix/syntax/query.h"
#include "kestrix/syntax/query_match.h"
#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/utils/error.h"

namespace kestrix::test {
namespace {

using index::Language;
using index::Query;

// Name and node of each capture, in no order.
using Captures = std::multiset<std::pair<std::string, const void*>>;
using Matches = std::map<std::uint16_t, std::set<Captures>>;  // by pattern

// A language's query, compiled by both. Lives as long as the process.
struct Queries {
  explicit Queries(const Language& language)
      : own(language.grammar(), language.query, language.name, language.captures),
        library(compile(language)) {}

  static TSQuery* compile(const Language& language) {
    { const index::ParserMemory installed; }  // its allocator, which serves from the heap now
    std::uint32_t offset = 0;
    TSQueryError error = TSQueryErrorNone;
    return ts_query_new(language.grammar(), language.query.data(),
                        static_cast<std::uint32_t>(language.query.size()), &offset, &error);
  }

  std::string name(std::uint32_t capture) const {
    std::uint32_t length = 0;
    const char* const text = ts_query_capture_name_for_id(library, capture, &length);
    return {text, length};
  }

  Query own;
  TSQuery* library;
};

const Queries& queries_of(const Language& language) {
  static auto& compiled = *new std::map<const Language*, Queries>;
  return compiled.try_emplace(&language, language).first->second;
}

class Comparison {
 public:
  Comparison(const Language& language, std::string_view text)
      : text_(text),
        queries_(queries_of(language)),
        matcher_(queries_.own, text),
        cursor_(ts_query_cursor_new(), ts_query_cursor_delete) {
    ts_query_cursor_set_max_start_depth(cursor_.get(), 0);
  }

  std::string run(TSNode root) {
    index::TreeCursor cursor(root);
    for (;;) {
      if (std::string found = compare(cursor.node()); !found.empty()) return found;
      if (cursor.to_first_child()) continue;
      while (!cursor.to_next_sibling()) {
        if (!cursor.to_parent()) return {};
      }
    }
  }

 private:
  std::string compare(TSNode node) {
    if (!ts_node_is_named(node) || ts_node_is_error(node)) return {};
    const Matches own = own_matches(node);
    const Matches library = library_matches(node);
    for (const auto& [pattern, matches] : library) {
      const auto found = own.find(pattern);
      if (found == own.end() || !std::ranges::includes(found->second, matches)) {
        return difference("the library alone", pattern, node);
      }
    }
    for (const auto& [pattern, matches] : own) {
      if (!library.contains(pattern)) return difference("this program alone", pattern, node);
    }
    return {};
  }

  static std::string difference(std::string_view who, std::uint16_t pattern, TSNode node) {
    return fmt::format("{} finds pattern {} at line {} ({})", who, pattern,
                       ts_node_start_point(node).row + 1, ts_node_type(node));
  }

  Matches own_matches(TSNode node) {
    Matches found;
    for (const std::uint16_t pattern : queries_.own.patterns_of(ts_node_symbol(node))) {
      matcher_.match(pattern, node, [&](const std::vector<TSQueryCapture>& captures) {
        Captures set;
        for (const TSQueryCapture& capture : captures) {
          set.emplace(queries_.own.capture_name(capture.index), capture.node.id);
        }
        found[pattern].insert(std::move(set));
      });
    }
    return found;
  }

  Matches library_matches(TSNode node) {
    Matches found;
    ts_query_cursor_exec(cursor_.get(), queries_.library, node);
    for (TSQueryMatch match; ts_query_cursor_next_match(cursor_.get(), &match);) {
      Captures set;
      bool admitted = true;
      for (std::uint16_t i = 0; i < match.capture_count; ++i) {
        const std::string name = queries_.name(match.captures[i].index);
        admitted = admitted && admits(match.pattern_index, name, match.captures[i].node);
        set.emplace(name, match.captures[i].node.id);
      }
      if (admitted) found[match.pattern_index].insert(std::move(set));
    }
    return found;
  }

  // The library leaves predicates to its users.
  bool admits(std::uint16_t pattern, std::string_view capture, TSNode node) const {
    const std::uint32_t start = ts_node_start_byte(node);
    const std::string_view text = text_.substr(start, ts_node_end_byte(node) - start);
    return std::ranges::all_of(queries_.own.pattern(pattern).predicates, [&](const auto& p) {
      return queries_.own.capture_name(p.capture) != capture ||
             std::ranges::find(p.texts, text) != p.texts.end();
    });
  }

  std::string_view text_;
  const Queries& queries_;
  index::QueryMatcher matcher_;
  std::unique_ptr<TSQueryCursor, decltype(&ts_query_cursor_delete)> cursor_;
};

}  // namespace

std::string query_difference(const Language& language, std::string_view text) {
  static_cast<void>(queries_of(language));  // not from the memory of the parse
  const index::ParsedText parsed(language.grammar(), text, 5'000);
  const auto root = parsed.root();
  return root ? Comparison(language, text).run(*root) : std::string();
}

}  // namespace kestrix::test
