#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "kestrix/files/skip_counts.h"
#include "kestrix/index/refresh/file_scan.h"
#include "kestrix/store/store.h"
#include "kestrix/walk/walker.h"

namespace kestrix::index {

/// What a refresh has to do so that the index tells of the files as they are now. A value: the rows
/// of the old state each stand in one of its lists.
struct RefreshPlan {
  std::string rebuilt;            ///< why there is no old state to start from; "" when there is
  std::vector<FileRow> kept;      ///< what looks as when it was last read; ascending by path
  std::vector<ScanTask> tasks;    ///< new files, and those that look otherwise; ascending by path
  std::vector<FileRow> gone;      ///< files that are no longer there; ascending by path
  SkipCounts skipped;             ///< what the walk left out
  bool has_other_skips = false;   ///< whether the old state counts other things that were left out
  bool all_resolve_anew = false;  ///< whether texts could not be read when imports were resolved
  std::int64_t next_id = 1;       ///< above every id of the old state

  /// Whether the old state tells all, as far as stamps show.
  bool is_done() const {
    return rebuilt.empty() && tasks.empty() && gone.empty() && !has_other_skips &&
           !all_resolve_anew;
  }
};

/// Compares what the index knows with what lies on disk; both ascend by path. Fills the lists of a
/// plan and leaves the rest of it as it is.
RefreshPlan plan_refresh(std::vector<FileRow> known, std::span<const WalkedFile> found);

}  // namespace kestrix::index
