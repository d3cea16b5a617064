#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/files/root_directory.h"
#include "kestrix/files/skip_counts.h"
#include "kestrix/index/refresh/file_scan.h"
#include "kestrix/index/refresh/indexer.h"
#include "kestrix/index/refresh/refresh_plan.h"
#include "kestrix/index/tables/indexed_files.h"
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
  std::unique_ptr<RepositoryIndex> run();
  RefreshPlan make_plan(const WalkResult& walked);
  std::string reason_to_rebuild();
  bool holds_what_differs(const RefreshPlan& plan);
  void carry_out(RefreshPlan plan);
  void recreate();
  void remove(const FileRow& row);
  void scan(const RefreshPlan& plan);
  void take(const ScanTask& task, ScannedFile file);
  void put(const ScanTask& task, ScannedFile file);
  void note_change(const FileRow& before, const ScannedFile& after);
  bool leaves_others_alone(const FileRow& before, const ScannedFile& after);
  void resolve();
  void give_roles(RepositoryIndex& index);
  void note_unread(const IndexedFiles& files);

  const IndexOptions& options_;
  const RootDirectory& root_;
  Store& store_;
  RefreshResult result_;
  std::unique_ptr<RepositoryIndex> old_;  // the state before, until it is left behind
  std::vector<FileRow> rows_;             // of the new state, so far; in the end ascending by path
  SkipCounts skipped_;
  bool all_resolve_anew_ = false;
  std::vector<std::string> resolve_anew_;
};

/// The files that count, by the choice of the options.
WalkResult list_files(const IndexOptions& options, const RootDirectory& root,
                      const std::filesystem::path& index, bool name_left_out);

/// Opens the store's state within the caller's transaction. Throws when another version wrote it,
/// or when it is not what was written.
std::unique_ptr<RepositoryIndex> open_stored(Store& store);

}  // namespace kestrix::index
