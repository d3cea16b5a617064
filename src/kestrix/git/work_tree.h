#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/files/root_directory.h"
#include "kestrix/git/git_index.h"

namespace kestrix::index {

/// What git knows of a work tree, as far as choosing files goes. Plain data.
///
/// It is read without running anything that the repository's configuration names: no filter, hook
/// or file monitor. Nor is a file read that it names outside of the work tree and of git's data;
/// where these lie ".git" itself says, as linked work trees need it.
struct WorkTree {
  /// The directory's path below the top of the work tree, "" for the top itself.
  std::string prefix;
  std::shared_ptr<const RootDirectory> top;
  /// Paths below `prefix`, relative to it, ascending by bytes: tracked files and links …
  std::vector<std::string> tracked;
  /// … and the places of submodules.
  std::vector<std::string> submodules;
  /// Folders, ending in "/", that a sparse checkout leaves out as a whole.
  std::vector<std::string> left_out;
  /// What git's index knows of the tracked files, one each; none unless asked for.
  std::vector<TrackedState> states;
  bool index_is_a_tree = false;  ///< as `GitIndexPaths` has it
  FileStamp index_stamp{};
  bool has_short_ids = true;  ///< ids are those of SHA-1
  /// Text of the ignore files that stand outside the work tree.
  std::string info_exclude;
  std::string global_excludes;
  std::size_t cut_excludes = 0;  ///< how many of these could not be read, or are too long
  bool ignore_case = false;
  bool may_convert = false;  ///< files may stand otherwise in the work tree than git keeps them
  /// The commit that it is at, in hexadecimal; "" before the first one.
  std::string commit;

  bool is_tracked(std::string_view path) const;
  bool is_submodule(std::string_view path) const;
  std::size_t count_tracked_below(std::string_view directory) const;
};

struct WorkTreeLookup {
  enum class Problem {
    kNone,
    kDamaged,  ///< there is git data, but it cannot be read
    kForeign,  ///< a directory above holds git data of another user, which git refuses, too
  };

  std::optional<WorkTree> work_tree;
  Problem problem = Problem::kNone;
};

/// The work tree that holds `directory`.
WorkTreeLookup find_work_tree(const RootDirectory& directory, bool with_states = false);

}  // namespace kestrix::index
