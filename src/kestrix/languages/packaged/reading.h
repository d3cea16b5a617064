#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/seeded_hash.h"

/// What the readers of Java, Kotlin and C# share: languages in which a file belongs to a package
/// (or namespace) and names the types of its package without an import.
namespace kestrix::index::packaged {

/// Whether a name is written as types are: it starts with an upper-case letter or one beyond ASCII.
bool is_type_like(std::string_view name);

/// A dotted name without the white space and the comments that may stand between its parts.
std::string dotted(const SourceTree& tree, TSNode name);

/// Whether a declaration bears the modifier ("final"), written before its name.
bool has_modifier(const SourceTree& tree, TSNode declaration, std::string_view modifier);

/// The symbol of a declaration whose head ends at byte `end`; annotations and attributes before it
/// belong to neither its signature nor its line.
SymbolFact symbol(const SourceTree& tree, SymbolKind kind, TSNode declaration, TSNode name,
                  std::uint32_t end);

/// Whether names that are written as constants, with "_" between upper-case words, may be ones of
/// the package; elsewhere they are members of types.
enum class Constants : std::uint8_t { kIgnore, kCount };

/// Collects the names that need no look-up outside of the file: those that it declares or that an
/// import of it binds. What else is used as a type makes `FileFacts::uses`.
class OwnNames {
 public:
  void add(std::string_view name) { names_.insert(name); }
  /// A type inside of another one: its name means nothing outside of that one's body.
  void add_nested(std::string_view name) { nested_.insert(name); }
  /// The head of a type that stands in no other one, from byte `start` to `end`.
  void add_head(const SourceTree& tree, std::uint32_t start, std::uint32_t end);

  bool contains(std::string_view name) const { return names_.contains(name); }
  std::vector<NameUse> foreign_uses(const SourceTree& tree, Constants constants) const;

 private:
  std::unordered_set<std::string_view, SeededHash> names_;
  std::unordered_set<std::string_view, SeededHash> nested_;
  std::unordered_map<std::string_view, std::uint32_t, SeededHash>
      heads_;  // what heads use, and how often
};

/// Adds an import fact of form `form` for each different name that the code spells out with its
/// package ("com.example.Name", up to the first part that looks like a type), with how often it
/// does; `statements` are the words ("import") behind which a name is none of these. Other names
/// than types are seen when they start like the file's own package.
void add_qualified_names(const SourceTree& tree, std::span<const std::string_view> statements,
                         std::uint16_t form, FileFacts& facts);

/// How a language's functions are told from other words.
struct CallWords {
  std::span<const std::string_view> keywords;  ///< that may stand before a bracket
  std::string_view declares;                   ///< stands before the name of a function of its own
  bool (*is_called)(std::string_view after);   ///< by the text behind the word
};

/// Adds a use for each function that is called by its name alone and that the file does not have:
/// one that its package, its module or a wildcard may bring in.
void add_calls(const SourceTree& tree, const OwnNames& own_names, const CallWords& words,
               FileFacts& facts);

/// Sorts the declared names and drops repeated ones.
void sort_declared(FileFacts& facts);

}  // namespace kestrix::index::packaged
