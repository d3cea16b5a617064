#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/resolver.h"
#include "kestrix/languages/rust/crates.h"
#include "kestrix/text/seeded_hash.h"

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

  /// Whether modules of the file were left out: it stands at too many places, or all modules of the
  /// repository take too much.
  bool is_limited(FileId file) const { return limited_.contains(file); }

  /// The file that a mod declaration of `file` means.
  std::optional<FileId> file_of_mod(FileId file, const ImportFact& import) const;

 private:
  using Modules = std::unordered_map<std::string, FileId, SeededHash>;
  struct Pending {
    FileId file;
    std::string path;
  };

  void add_tree(std::size_t crate);
  void add_modules(std::size_t crate, const Pending& at, std::vector<Pending>& pending);
  std::string folder_below(FileId file) const;

  const FileTable& files_;
  RustCrates crates_;
  std::vector<bool> roots_;       // by file
  std::vector<Modules> modules_;  // by crate, then by path
  std::unordered_map<FileId, Place> places_;
  std::unordered_set<FileId> limited_;
  std::size_t left_;  // of what all paths may take
};

}  // namespace kestrix::index
