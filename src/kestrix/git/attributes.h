#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/text/seeded_hash.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix::index {

/// The attributes by which a repository tells what its files are.
enum class GitAttribute : std::uint8_t { kGenerated, kVendored, kDocumentation };

inline constexpr std::array<std::string_view, 3> kGitAttributeNames = {
    "linguist-generated", "linguist-vendored", "linguist-documentation"};

/// What a line of a .gitattributes says of a file.
struct GivenAttribute {
  bool on = false;            ///< off: "-name" or "name=false"
  bool of_kind = false;       ///< by an ending alone ("*.css"): it tells of no place
  std::string_view folder{};  ///< of the .gitattributes; "" for the top
  std::uint32_t line = 0;     ///< 1-based
};

/// One for each `GitAttribute`; none where nothing is said.
using GivenAttributes = std::array<std::optional<GivenAttribute>, kGitAttributeNames.size()>;

/// The .gitattributes of a repository, in git's format (gitattributes(5)): of the lines that match
/// a path the last one counts, and a deeper file's before a higher one's. Macros are passed over;
/// so are lines of other attributes, and patterns beyond a bound on their work.
class GitAttributes {
 public:
  /// Adds the text of the file in `folder`, once for each folder.
  void add(std::string_view folder, std::string_view text);

  bool empty() const { return scopes_.empty(); }

  /// What they say of a file. Views live as long as the object.
  GivenAttributes of(std::string_view path) const;

 private:
  // By attribute: what was said last, none by "!name", which takes back what is said elsewhere.
  struct Said {
    std::optional<bool> on;
    std::uint32_t line = 0;  // 0: nothing
    bool of_kind = false;
  };
  using Sayings = std::array<Said, kGitAttributeNames.size()>;
  using Table = std::unordered_map<std::string, Sayings, SeededHash>;

  // Of the patterns of one file. Most are of a form that is looked up or compared.
  struct Scope {
    std::string_view folder;
    Table names;                                            // "name"
    Table paths;                                            // "folder/name"
    Table folders;                                          // "folder/**"
    std::vector<std::pair<std::string, Sayings>> suffixes;  // "*suffix"
    struct Glob {
      std::string prefix;  // what stands before the first wildcard
      bool whole_path;
      Wildmatch pattern;
      Sayings said;
    };
    std::vector<Glob> globs;
  };

  void add_line(Scope& scope, std::string_view line, std::uint32_t number);
  void add_pattern(Scope& scope, std::string pattern, const Sayings& said);
  void add_glob(Scope& scope, std::string_view pattern, const Sayings& said);
  static Sayings said_of(const Scope& scope, std::string_view path);

  std::unordered_map<std::string, std::unique_ptr<Scope>, SeededHash> scopes_;
  std::size_t longest_folder_ = 0;
  std::size_t suffix_count_ = 0;
  std::size_t glob_parts_ = 0;
};

}  // namespace kestrix::index
