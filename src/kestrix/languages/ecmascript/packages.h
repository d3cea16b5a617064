#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/ecmascript/files.h"
#include "kestrix/languages/ecmascript/targets.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix::index::ecmascript {

/// The package.json files of a repository and the workspaces that join them. Frozen once built.
class Packages {
 public:
  explicit Packages(const FileTable& files);

  /// A folder that has a package.json.
  struct Package {
    std::string folder;
    std::string name;
    std::vector<std::string> entries;  ///< what "main" and its like name, best first
    TargetMap exports;
    TargetMap imports;
  };

  /// Whether workspaces have more members, or patterns of them, than are looked at.
  bool is_cut() const { return is_cut_; }

  /// The nearest package around a folder; null when there is none.
  const Package* around(std::string_view folder) const;

  /// The package that files of `folder` import by that name: one around them, or a member of a
  /// workspace around them. Null when it is none of the repository.
  const Package* named(std::string_view name, std::string_view folder) const;

  /// The file that `subpath` ("" for the package itself, else "a/b") of a package means.
  std::optional<FileId> find(const Package& package, std::string_view subpath,
                             Dialect dialect) const;

  /// What the `imports` of the packages around `folder` say of "#specifier": paths below the
  /// package that are files, else names of packages.
  struct Internal {
    std::optional<FileId> file;
    std::vector<std::string> specifiers;
  };
  Internal find_internal(std::string_view specifier, std::string_view folder,
                         Dialect dialect) const;

  /// The file or folder (through its package.json or index) at a path. What lies in a folder for
  /// built files and is not there falls back to its source in the package around it.
  std::optional<FileId> find_path(const std::string& path, Dialect dialect) const;
  /// The same for a path that can only be a folder.
  std::optional<FileId> find_folder(const std::string& path, Dialect dialect) const;

 private:
  struct Workspace {
    std::unordered_set<std::string, SeededHash> folders;  // members written without wildcards
    std::vector<Wildmatch> patterns;
    std::unordered_map<std::string_view, const Package*, SeededHash> members;
  };

  void add_package(std::string_view path, std::string_view text);
  void add_members(std::string_view folder, const std::vector<std::string>& patterns);
  void add_patterns(Workspace& workspace, std::string_view pattern);
  bool is_member(const Workspace& workspace, std::string_view folder, std::string_view relative);
  bool is_beyond(std::size_t count, std::size_t most);
  void read_workspace(std::string_view path, std::string_view text);
  void link_members();

  std::optional<FileId> find_target(const Package& package, std::string_view target,
                                    std::string_view subpath, Dialect dialect) const;
  std::optional<FileId> find_targets(const Package& package,
                                     const std::vector<std::string>& targets,
                                     std::string_view subpath, Dialect dialect) const;
  std::optional<FileId> find_source(const Package& package, std::string_view target,
                                    Dialect dialect) const;
  std::optional<FileId> find_entry(const Package& package, std::string_view subpath,
                                   Dialect dialect) const;
  std::optional<FileId> find_plain(const std::string& path, Dialect dialect) const;

  const FileTable& files_;
  // What all workspaces together take.
  std::size_t patterns_ = 0;
  std::size_t plain_members_ = 0;
  std::size_t match_steps_ = 0;
  bool is_cut_ = false;
  std::vector<Package> packages_;
  std::unordered_map<std::string_view, const Package*, SeededHash> by_folder_;
  std::unordered_map<std::string, Workspace, SeededHash>
      workspaces_;  // by the folder of their root
};

}  // namespace kestrix::index::ecmascript
