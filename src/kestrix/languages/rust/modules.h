#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/languages/resolver.h"
#include "kestrix/languages/rust/crates.h"

namespace kestrix::index {

/// The module trees of all crates of a repository.
class RustModules {
 public:
  explicit RustModules(const FileTable& files);

  /// A file's place in a module tree. A file of several crates is seen from the first one.
  struct Place {
    std::size_t crate;
    std::string path;  ///< "a::b", "" for the root
  };
  const Place* place_of(FileId file) const;

  std::optional<FileId> find(std::size_t crate, const std::string& path) const;

  /// The crate that a file of `crate` knows under that name.
  std::optional<std::size_t> crate_named(std::string_view name, std::size_t crate) const;

  /// The file that a mod declaration of `file` means.
  std::optional<FileId> file_of_mod(FileId file, const ImportFact& import) const;

 private:
  void add_tree(std::size_t crate);
  std::string folder_below(FileId file) const;

  const FileTable& files_;
  RustCrates crates_;
  std::vector<bool> roots_;                                       // by file
  std::vector<std::unordered_map<std::string, FileId>> modules_;  // by crate, then by path
  std::unordered_map<FileId, Place> places_;
};

}  // namespace kestrix::index
