#pragma once

#include <optional>

#include "kestrix/files/root_directory.h"
#include "kestrix/git/work_tree.h"
#include "kestrix/index/index.h"

namespace kestrix {

/// Whether an index that was just refreshed tells of what git has in its own index and nothing
/// else: every tracked file is as it is there, no other file was read, and nothing is staged. None
/// where it cannot be told without running git: stamps of many files are other than git noted them,
/// as in a copy of a work tree; git's index changed since it was last known to hold a commit's
/// tree.
///
/// `tree` is read with its states. Looks at the files that the index has no stamp of, and reads a
/// few whose stamps leave it open.
std::optional<bool> is_clean(const index::RootDirectory& root, const index::WorkTree& tree,
                             const index::RepositoryIndex& index);

}  // namespace kestrix
