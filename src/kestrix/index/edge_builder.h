#pragma once

#include "kestrix/index/indexed_files.h"
#include "kestrix/index/store.h"
#include "kestrix/utils/stop.h"

namespace kestrix::index {

struct EdgeBuildOptions {
  unsigned threads = 1;
  const StopFlag* stop = nullptr;
};

/// Resolves the imports of all files and brings the store's edges in line; writes only what
/// differs. Within the caller's transaction.
void rebuild_edges(Store& store, const IndexedFiles& files, const EdgeBuildOptions& options);

}  // namespace kestrix::index
