#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/languages/ecmascript/packages.h"
#include "kestrix/languages/resolver.h"

namespace kestrix::index::ecmascript {

/// The tsconfig and jsconfig files of a repository, as far as they say where modules are. Frozen
/// once built.
class Configs {
 public:
  Configs(const FileTable& files, const Packages& packages);

  struct Candidates {
    std::vector<std::string> paths;  ///< best first; none leaves the repository
    bool named = false;  ///< a pattern that is more than "*" fits: the module is the repository's
  };

  /// Where `specifier` may be, for files of `folder`. The configuration files of the nearest folder
  /// that has some go first, tsconfig.json before its variants (tsconfig.app.json), then those of
  /// the folders above. `baseUrl` counts in the nearest tsconfig.json or jsconfig.json only.
  Candidates find(std::string_view specifier, std::string_view folder) const;

 private:
  struct Rule {
    std::string prefix;
    std::string suffix;
    bool star;
    std::vector<std::string> targets;  // below the repository, with their "*"
  };
  struct Config {
    std::vector<Rule> rules;
    std::optional<std::string> base_url;
    bool main;  // tsconfig.json or jsconfig.json
  };
  struct Raw {
    std::string folder;
    Json json;
  };

  Config effective(std::string_view path) const;
  std::vector<std::string> bases_of(const Raw& raw) const;
  std::optional<std::string> find_base(std::string_view folder, const std::string& name) const;
  void apply(const Raw& raw, std::string_view leaf, Config& config) const;
  static void add_targets(const Rule& rule, std::string_view specifier, Candidates& found);
  static const Rule* best_rule(const Config& config, std::string_view specifier);

  const Packages& packages_;
  std::unordered_map<std::string, Raw> raw_;  // by path
  std::unordered_map<std::string, std::vector<Config>> by_folder_;
};

}  // namespace kestrix::index::ecmascript
