#pragma once

#include <tree_sitter/api.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kestrix/facts/facts.h"
#include "kestrix/languages/code/rules.h"
#include "kestrix/languages/conventions.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/syntax/lexis.h"

namespace kestrix::index {

class SourceTree;

/// One row of the language table: all that the index knows about a language.
///
/// A language is its grammar, its query file, a function that turns the parsed tree into facts, and
/// the resolver that it may share with its relatives. Adding one touches no other.
struct Language {
  std::string_view name;  ///< "python"
  /// Extensions with their dot, and whole file names; lower case.
  std::span<const std::string_view> files;
  const TSLanguage* (*grammar)();
  std::string_view query;  ///< text of languages/<name>.scm
  /// What `read` makes of the captures: their names, without "@". The query may capture these,
  /// "@enter", "@members" and "@import", and names that start with "_" for its predicates.
  std::span<const std::string_view> captures;
  const Lexis* lexis;
  /// Words that announce a pattern marked `anywhere` ("import"): it may start with one or hold it.
  std::span<const std::string_view> keywords;
  FileFacts (*read)(const SourceTree& tree);
  ResolverFactory resolver;
  /// How its declarations and mentions are found; null: it gives none.
  const CodeRules* code = nullptr;
  /// A copy of the text, of equal length, in which what the grammar cannot read is blank; it is
  /// parsed in the text's stead. None when nothing is in the way; null for a language without need.
  std::optional<std::string> (*mask)(std::string_view text) = nullptr;
  /// Whether what is masked is no code: no word of it counts as a use.
  bool masks_words = false;
  const Conventions* conventions = nullptr;  ///< how its files are named; may be null
};

/// Every language, in name order. Immutable; usable from any thread.
std::span<const Language* const> languages();

/// The language of a path by its whole name, else by its extension; null when none reads it. Case
/// is ignored.
const Language* language_of(std::string_view path);

/// Looks a language up by its name; null when there is none.
const Language* language_named(std::string_view name);

}  // namespace kestrix::index
