#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrix::index {

/// What a query's capture means to the walk over the tree.
enum class CaptureRole : std::uint8_t {
  kFact,     ///< handed to the language's read function
  kEnter,    ///< "@enter": what stands directly in it counts as standing outside of it
  kMembers,  ///< "@members": entered too, one level deeper (the body of a class)
};

/// A node of a pattern, and what it asks of the node that it matches.
struct PatternNode {
  enum class Kind : std::uint8_t { kSymbol, kAnyNamed, kAny, kOneOf };

  Kind kind = Kind::kAny;
  bool optional = false;
  bool first = false;  ///< nothing but comments and unnamed nodes stands before it
  bool last = false;   ///< nothing but comments and unnamed nodes stands behind it
  TSSymbol symbol = 0;
  TSFieldId field = 0;               ///< 0: in any field or none
  std::vector<TSFieldId> absent;     ///< fields that the node must not have
  std::vector<std::uint32_t> names;  ///< captures
  std::vector<PatternNode>
      children;  ///< of kOneOf: the alternatives; else in order, others between
};

/// A language's query file, compiled. Immutable, shared by all threads.
///
/// The files are tree-sitter queries, and this reads the part of that language which the outline
/// needs: nodes, tokens, fields, absent fields, wildcards, alternatives, "?", anchors, captures. Of
/// the predicates `#eq?` and `#any-of?` with literal texts, of the directives `(#set! anywhere)`,
/// which marks a pattern that counts wherever it stands in the file. The parser library's own
/// compiler analyses how patterns may fail, which takes it up to 47 ms for a grammar; this one
/// takes a fifth of one.
class Query {
 public:
  struct Predicate {
    std::uint32_t capture = 0;
    std::vector<std::string> texts;
  };
  struct Pattern {
    PatternNode root;
    std::vector<Predicate> predicates;
    bool anywhere = false;
  };

  /// Throws Error that names `name` and the place when the text is no query of the language, or
  /// captures what nobody looks at: something else than `captures`, "@import", what has a role and,
  /// for predicates, names that start with "_".
  Query(const TSLanguage* language, std::string_view text, std::string_view name,
        std::span<const std::string_view> captures);

  /// The patterns whose root such a node may be, in the order of the file.
  std::span<const std::uint16_t> patterns_of(TSSymbol symbol) const {
    return symbol < by_symbol_.size() ? std::span(by_symbol_[symbol])
                                      : std::span<const std::uint16_t>();
  }
  const Pattern& pattern(std::uint16_t at) const { return patterns_[at]; }
  CaptureRole role(std::uint32_t capture) const { return roles_[capture]; }
  std::string_view capture_name(std::uint32_t capture) const { return names_[capture]; }

 private:
  friend class QueryParser;

  std::vector<Pattern> patterns_;
  std::vector<std::vector<std::uint16_t>> by_symbol_;
  std::vector<std::string> names_;
  std::vector<CaptureRole> roles_;
};

}  // namespace kestrix::index
