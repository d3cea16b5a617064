#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/languages/csharp/project_file.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// A directive that counts in every file of a project.
struct GlobalUsing {
  std::string name;  ///< of a namespace or type
  bool type = false;
  std::string alias;  ///< "" for none
};

/// Which project a file belongs to, what that project sees, and what its files import without
/// saying so. A project is a folder that holds a .csproj file, with all below it that is no project
/// of its own.
class DotnetProjects {
 public:
  using Id = std::uint32_t;
  /// What stands in no project's folder: seen by all, and sees all.
  static constexpr Id kLoose = 0;

  explicit DotnetProjects(const FileTable& files);

  Id project_of(FileId file) const { return projects_of_files_[file]; }

  /// Whether a project is built with what another one declares: it is that one, or refers to it,
  /// by its project file or its name, on however many ways. A project that may take its references
  /// from elsewhere sees all.
  bool sees(Id from, Id to) const;

  /// The global directives of a project's C# files, of its project file and of the
  /// Directory.Build.props and .targets above it; at most `kMostUsings`.
  std::span<const GlobalUsing> global_usings(Id project) const { return projects_[project].usings; }

  static constexpr std::size_t kMostUsings = 256;

 private:
  struct Project {
    std::string_view folder;
    bool open = false;         // whether it may see any other one
    std::vector<Id> referred;  // at first directly, then all of them; ascending
    std::vector<GlobalUsing> usings;
  };

  Id containing(std::string_view path) const;
  void take(Project& project, std::string_view folder, std::span<const DotnetItem> items);
  Id referred_by(std::string_view kind, std::string_view value, std::string_view folder) const;
  void read_project_files();
  void add_usings_of_sources();
  void follow_references();

  const FileTable& files_;
  std::vector<Project> projects_;
  std::unordered_map<std::string_view, Id, SeededHash> by_folder_;
  std::unordered_map<std::string_view, Id, SeededHash>
      by_name_;  // kLoose for a name that several have
  std::vector<Id> projects_of_files_;
};

}  // namespace kestrix::index
