#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// What a query's capture means to the walk over the tree.
enum class CaptureRole : std::uint8_t {
  kFact,     ///< handed to the language's read function
  kEnter,    ///< "@enter": what stands directly in it counts as standing outside of it
  kMembers,  ///< "@members": entered too, one level deeper (the body of a class)
};

/// A language's query file, compiled. Immutable, shared by all threads.
///
/// Predicates: `#eq?` and `#any-of?` against literal texts. Directive: `(#set! anywhere)` marks a
/// pattern that counts wherever it stands in the file. Anything else is an error.
class Query {
 public:
  /// Throws Error naming `name` and the place when the text is no valid query of the language.
  Query(const TSLanguage* language, std::string_view text, std::string_view name);

  const TSQuery* get() const { return query_.get(); }
  bool anywhere(std::uint32_t pattern) const { return patterns_[pattern].anywhere; }
  CaptureRole role(std::uint32_t capture) const { return roles_[capture]; }
  std::string_view capture_name(std::uint32_t capture) const { return names_[capture]; }

  /// Whether the match fulfils its pattern's predicates.
  bool admits(const TSQueryMatch& match, std::string_view text) const;

 private:
  struct Predicate {
    std::uint32_t capture;
    std::vector<std::string> texts;
  };
  struct Pattern {
    bool anywhere = false;
    std::vector<Predicate> predicates;
  };
  struct Deleter {
    void operator()(TSQuery* query) const { ts_query_delete(query); }
  };

  void read_predicates(std::uint32_t pattern, std::string_view name);
  void add_predicate(Pattern& pattern, const TSQueryPredicateStep* steps, std::uint32_t count,
                     std::string_view name);
  std::string_view string_value(std::uint32_t id) const;

  std::unique_ptr<TSQuery, Deleter> query_;
  std::vector<Pattern> patterns_;
  std::vector<CaptureRole> roles_;
  std::vector<std::string_view> names_;
};

}  // namespace kestrix::index
