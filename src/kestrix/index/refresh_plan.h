#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "kestrix/index/file_scan.h"
#include "kestrix/store/store.h"
#include "kestrix/walk/walker.h"

namespace kestrix::index {

/// What a refresh has to do so that the index tells of the files as they are now.
struct RefreshPlan {
  std::vector<ScanTask> tasks;       ///< new files, and those that do not look as when last read
  std::vector<const FileRow*> gone;  ///< rows whose file is no longer there
  std::size_t unchanged = 0;

  bool empty() const { return tasks.empty() && gone.empty(); }
};

/// Compares what the index knows with what lies on disk; both ascend by path. The plan points into
/// `known`.
RefreshPlan plan_refresh(std::span<const FileRow> known, std::span<const WalkedFile> found);

}  // namespace kestrix::index
