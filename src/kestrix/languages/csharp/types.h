#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/csharp/projects.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Which files declare which type (or extension method) of which namespace, wherever they lie.
///
/// Filled once, then only read. Keeps views of the names that it is given.
class DotnetTypes {
 public:
  explicit DotnetTypes(const FileTable& files) : files_(files), projects_(files) {}

  const DotnetProjects& projects() const { return projects_; }

  /// Files are given in ascending order. A partial type may have its parts in several of them.
  void declare(std::string_view space, std::string_view name, FileId file, bool partial);

  /// The namespace of that name, or one around such; "" when the repository declares nothing in it.
  std::string_view space(std::string_view name) const;
  bool has_space(std::string_view name) const { return !space(name).empty(); }

  struct Found {
    std::vector<FileId> files{};
    std::string_view name{};  ///< as it was declared
    bool partial = false;

    bool empty() const { return files.empty(); }
  };

  /// The files that declare the name as `from` sees it: those of its own project, else of the ones
  /// that this one sees; all parts of a partial type, of different ones the nearest. At most
  /// `kMostFound`, ascending; a type of more parts is the file named after it, where there is one.
  /// Looks at a bounded number of candidates.
  Found find(std::string_view space, std::string_view name, FileId from) const;

  /// The one file that stands for what was found: of the parts of a type the one named after it,
  /// else the first.
  std::optional<FileId> main_of(const Found& found) const;

  static constexpr std::size_t kMostFound = 8;

 private:
  struct Declared {
    std::vector<FileId> files;
    bool partial = true;
  };

  std::size_t nearness(FileId file, FileId from) const;
  bool is_named_after(FileId file, std::string_view name) const;
  void keep_main_part(std::vector<FileId>& parts, std::string_view name) const;

  const FileTable& files_;
  DotnetProjects projects_;
  std::unordered_map<std::string_view, std::unordered_map<std::string_view, Declared, SeededHash>,
                     SeededHash>
      declared_;
  std::unordered_set<std::string_view, SeededHash> spaces_;
};

}  // namespace kestrix::index
