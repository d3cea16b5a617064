#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/files/root_directory.h"
#include "kestrix/files/skip_counts.h"
#include "kestrix/index/file_scan.h"
#include "kestrix/index/indexer.h"
#include "kestrix/index/refresh_plan.h"
#include "kestrix/store/store.h"
#include "kestrix/walk/walker.h"

namespace kestrix::index {

/// One refresh of one store. For one run.
class Refresher {
 public:
  /// All three must outlive the object.
  Refresher(const IndexOptions& options, const RootDirectory& root, Store& store)
      : options_(options), root_(root), store_(store) {}

  RefreshResult refresh();
  /// What is opened is the state that the refresh saw or made.
  RefreshedIndex refresh_and_open();

 private:
  std::unique_ptr<RepositoryIndex> run(bool open);
  bool is_up_to_date(const WalkResult& walked);
  bool holds_contents_of(const RefreshPlan& plan);
  void bring_up_to_date(const WalkResult& walked);
  std::string reason_to_rebuild();
  void recreate();
  void remove(const FileRow& row);
  void scan(const RefreshPlan& plan);
  void take(const ScanTask& task, ScannedFile file);
  void put(const ScanTask& task, ScannedFile file);
  void note_change(const FileRow& before, const ScannedFile& after);
  bool leaves_others_alone(const FileRow& before, const ScannedFile& after);
  void resolve();
  void merge_rows(const RefreshPlan& plan);

  const IndexOptions& options_;
  const RootDirectory& root_;
  Store& store_;
  RefreshResult result_;
  std::vector<FileRow> rows_;   // as the store has them, ascending by path
  std::vector<FileRow> fresh_;  // what takes their place
  SkipCounts skipped_;
  bool all_resolve_anew_ = false;
  std::vector<std::string> resolve_anew_;
};

/// Opens the store's state within the caller's transaction. Throws when another version wrote it,
/// or when it is not what was written.
std::unique_ptr<RepositoryIndex> open_stored(Store& store);

}  // namespace kestrix::index
