#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/files/file_reading.h"
#include "kestrix/files/root_directory.h"

namespace kestrix::index {

/// Settings of git, read from its configuration files. Nothing that they name is executed.
class GitConfig {
 public:
  /// `git_directory` decides which conditional includes hold ("gitdir:"; other conditions never
  /// do).
  explicit GitConfig(std::filesystem::path git_directory)
      : git_directory_(std::move(git_directory)) {}

  /// Reads a file and those that it includes; its settings come before those read earlier. A
  /// missing file holds none. False when one is malformed, or includes go on without end.
  bool read(const std::filesystem::path& file);

  /// Reads the files of the system and of the user.
  bool read_user_files();

  /// From now on only files below these directories are read, through no link: what a repository's
  /// own settings name must not lead out of it. The directories must outlive the object.
  void confine_to(std::vector<const RootDirectory*> directories) {
    confines_ = std::move(directories);
  }
  bool admits(const std::filesystem::path& file) const { return place_of(file).has_value(); }
  /// Reads a file that is admitted.
  FileBytes read_admitted(const std::filesystem::path& file, std::size_t limit) const;

  /// The last value of a name like "core.excludesfile", in lower case; a name without a value has
  /// the value "true".
  std::optional<std::string> value(std::string_view name) const;
  bool is_true(std::string_view name) const;
  /// Whether git would take data below `top` from another user (safe.directory).
  bool is_safe(const std::filesystem::path& top) const;
  /// A value that is a path, with "~/" replaced.
  std::optional<std::filesystem::path> path(std::string_view name) const;

 private:
  class Parser;
  struct Place {
    const RootDirectory* directory;
    std::string relative;
  };

  std::optional<Place> place_of(const std::filesystem::path& file) const;
  void add_safe_directory(const std::string& value);
  void include(const std::filesystem::path& from, std::string_view path);
  bool holds(const std::filesystem::path& from, std::string_view condition) const;

  std::filesystem::path git_directory_;
  std::map<std::string, std::string, std::less<>> values_;
  std::vector<std::string> safe_directories_;
  std::vector<const RootDirectory*> confines_;  // none: everywhere
  int depth_ = 0;
  int included_ = 0;
  bool well_formed_ = true;
};

/// The path of `path` as seen from `top`, "" for `top` itself; none for one that is not below it.
/// Both absolute and normal.
std::optional<std::string> path_below(const std::filesystem::path& top,
                                      const std::filesystem::path& path);

/// An environment variable, "" where it is not set.
std::string environment(const char* name);

}  // namespace kestrix::index
