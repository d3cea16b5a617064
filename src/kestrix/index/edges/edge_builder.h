#pragma once

#include <optional>
#include <span>

#include "kestrix/index/tables/indexed_files.h"
#include "kestrix/store/store.h"
#include "kestrix/utils/stop.h"

namespace kestrix::index {

struct EdgeBuildOptions {
  unsigned threads = 1;
  const StopFlag* stop = nullptr;
};

/// Resolves the imports of all files and brings the store's edges in line; writes only what
/// differs. Within the caller's transaction. Rows keep up with the store.
void rebuild_edges(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options);

/// The same for some files alone, when nothing that the others' imports lead to has changed.
void rebuild_edges_of(std::span<const FileId> sources, Store& store, const IndexedFiles& files,
                      const EdgeBuildOptions& options);

}  // namespace kestrix::index
