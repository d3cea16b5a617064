#pragma once

#include <string>
#include <vector>

#include "kestrix/files/root_directory.h"
#include "kestrix/files/skip_counts.h"
#include "kestrix/utils/stop.h"

namespace kestrix::index {

struct WalkOptions {
  /// Paths below the root that are not looked at: the index's own files when they lie there.
  std::vector<std::string> excluded;
  /// Whether the result names what was left out, not only counts it.
  bool name_left_out = false;
  /// Ends the walk by `StopRequest`; none by default.
  const StopFlag* stop = nullptr;
};

struct WalkedFile {
  std::string path;  ///< relative to the root; any byte but NUL
  FileStamp stamp;
};

/// Something that was left out.
struct LeftOut {
  std::string path;  ///< a folder's ends in "/"; "./" for the repository as a whole
  std::string reason;

  friend auto operator<=>(const LeftOut&, const LeftOut&) = default;
};

struct WalkResult {
  std::vector<WalkedFile> files;  ///< regular files, ascending by the bytes of their paths
  SkipCounts skipped;             ///< whatever was left out
  std::vector<LeftOut> left_out;  ///< the same by name, one for each that is counted; ascending

  void leave_out(const std::string& path, std::string_view reason, bool named);
};

/// Lists the files of a repository without reading them.
///
/// Inside a git work tree these are the tracked files and the untracked ones that its ignore rules
/// admit: nested and parent ignore files, info/exclude, the user's global excludes. A directory
/// that the work tree around it ignores as a whole counts as standing alone. Elsewhere, and where
/// git's data is damaged, all files but those in version-control, dependency and cache folders.
/// Submodules, repositories within and third-party code (see third_party.h) are left out, tracked
/// or not. Links are never followed.
///
/// Throws `Error` when the root cannot be listed, never for what lies below it. Memory grows with
/// the number of files.
WalkResult walk(const RootDirectory& root, const WalkOptions& options = {});

}  // namespace kestrix::index
