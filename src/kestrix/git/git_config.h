#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

  /// From now on only files in these directories, absolute and without links, are included and
  /// admitted: what a repository's own settings name must not lead out of it.
  void confine_to(std::vector<std::filesystem::path> directories) {
    confines_ = std::move(directories);
  }
  bool admits(const std::filesystem::path& file) const;

  /// The last value of a name like "core.excludesfile", in lower case; a name without a value has
  /// the value "true".
  std::optional<std::string> value(std::string_view name) const;
  bool is_true(std::string_view name) const;
  /// A value that is a path, with "~/" replaced.
  std::optional<std::filesystem::path> path(std::string_view name) const;

 private:
  class Parser;

  void include(const std::filesystem::path& from, std::string_view path);
  bool holds(const std::filesystem::path& from, std::string_view condition) const;

  std::filesystem::path git_directory_;
  std::map<std::string, std::string, std::less<>> values_;
  std::vector<std::filesystem::path> confines_;  // none: everywhere
  int depth_ = 0;
  int included_ = 0;
  bool well_formed_ = true;
};

/// An environment variable, "" where it is not set.
std::string environment(const char* name);

}  // namespace kestrix::index
