#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/formats/json.h"
#include "kestrix/languages/ecmascript/packages.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index::ecmascript {

/// The tsconfig and jsconfig files of a repository, as far as they say where modules are. Frozen
/// once built.
class Configs {
 public:
  Configs(const FileTable& files, const Packages& packages);

  /// Whether a configuration says more than is looked at, or a folder has more of them.
  bool is_cut() const { return is_cut_; }

  struct Candidates {
    std::vector<std::string> paths;  ///< best first; none leaves the repository
    bool named = false;  ///< a pattern that is more than "*" fits: the module is the repository's
  };

  /// Where `specifier` may be, for files of `folder`. The configuration files of the nearest folder
  /// that has some go first, tsconfig.json before its variants (tsconfig.app.json), then those of
  /// the folders above. `baseUrl` counts in the nearest tsconfig.json or jsconfig.json only.
  Candidates find(std::string_view specifier, std::string_view folder) const;

 private:
  // A pattern with a "*": what follows it, and where the "*" may stand, as it is written.
  struct Starred {
    std::string suffix;
    std::vector<std::string> targets;
  };
  // What one file says under "paths". A look-up goes through the lengths that prefixes have.
  struct Rules {
    std::unordered_map<std::string, std::vector<std::string>, SeededHash> exact;
    std::unordered_map<std::string, std::vector<Starred>, SeededHash> by_prefix;
    std::vector<std::size_t> lengths;  // descending
  };
  struct Match {
    std::string_view prefix;
    std::string_view star;
    const std::vector<std::string>* targets;
  };
  // One file as it is written.
  struct Raw {
    std::string folder;
    std::optional<std::string> base_url;
    std::optional<Rules> rules;
    std::vector<std::string> extends;
    std::vector<const Raw*> bases;
  };
  // What is in force in a file: rules are shared with the one that has them.
  struct Config {
    const Rules* rules;
    std::string from;  // folder that their targets are seen from
    std::optional<std::string> base_url;
    bool main;  // tsconfig.json or jsconfig.json
  };

  Raw read(std::string_view folder, std::string_view text);
  Rules rules_of(const Json& paths);
  Config effective(const Raw& leaf, bool main);
  // Cuts a list that is longer.
  template <class List>
  void keep_first(List& list, std::size_t most) {
    is_cut_ |= list.size() > most;
    if (list.size() > most) list.resize(most);
  }
  void add(std::string_view path);
  const Raw* find_base(std::string_view folder, const std::string& name) const;
  static std::optional<Match> match(const Rules& rules, std::string_view specifier);
  static void add_targets(const Config& config, std::string_view leaf, const Match& match,
                          Candidates& found);

  const Packages& packages_;
  std::unordered_map<std::string, Raw, SeededHash> raw_;  // by path
  std::unordered_map<std::string, std::vector<Config>, SeededHash> by_folder_;
  bool is_cut_ = false;
};

}  // namespace kestrix::index::ecmascript
