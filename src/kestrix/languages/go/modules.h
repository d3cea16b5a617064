#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// The modules of a repository, by their go.mod files, and what a go.work says of all of them.
class GoModules {
 public:
  explicit GoModules(const FileTable& files);

  struct Place {
    std::string folder;
    bool own;  ///< below the importing file's own module
  };

  /// Where in the repository an import path leads from a folder, whether or not that folder
  /// exists; none for the path of another repository.
  std::optional<Place> place_of(std::string_view path, std::string_view folder) const;

 private:
  using Replaced = std::unordered_map<std::string, std::string, SeededHash>;  // path to folder
  struct Module {
    std::string path;
    Replaced replaced;
  };

  void add_module(std::string_view folder, std::string_view text);
  void add_workspace(std::string_view folder, std::string_view text);
  static void add_replaced(std::string_view folder, std::span<const std::string_view> words,
                           Replaced& replaced);
  const std::string* module_above(std::string_view folder) const;

  std::unordered_map<std::string, Module, SeededHash> by_folder_;
  std::unordered_map<std::string, std::string, SeededHash> by_path_;  // to the folder
  Replaced replaced_everywhere_;
  std::unordered_set<std::string, SeededHash> vendored_;  // folders that hold a vendor folder
};

}  // namespace kestrix::index
