#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/index/index.h"
#include "kestrix/utils/stop.h"
#include "kestrix/walk/walker.h"

namespace kestrix::index {

struct IndexOptions {
  /// The repository: any directory, also one below the top of a git work tree.
  std::filesystem::path root = ".";
  /// The index's file; none: `default_index_path`, which never lies in the repository.
  std::optional<std::filesystem::path> file;
  /// Which of the listed files count; none: all of them. Called on the calling thread.
  std::function<bool(std::string_view path)> takes;
  /// Tells choices of `takes` apart, "" for all files: each has a default index of its own, so that
  /// one choice does not undo another's work.
  std::string choice;
  /// How many threads read and parse; 0: one a core. Results do not depend on it.
  unsigned threads = 0;
  /// How long to wait while another process refreshes the same index. A first indexing may take
  /// that long.
  std::chrono::milliseconds lock_timeout = std::chrono::seconds(60);
  /// Ends the work by throwing `StopRequest`, at once, with the index as it was before.
  const StopFlag* stop = nullptr;
  /// Called on the calling thread after each file that was read, when there are files to read.
  std::function<void(std::size_t done, std::size_t total)> progress;
};

/// What a refresh did, in files.
struct RefreshResult {
  std::size_t added = 0;
  std::size_t changed = 0;  ///< their content, that is
  std::size_t removed = 0;
  std::size_t unchanged = 0;
  std::string rebuilt;         ///< why all was read anew; "" when it was not
  std::filesystem::path file;  ///< where the index lies
};

/// Brings the index up to date with the files, in one transaction: whatever ends it early, a kill
/// included, leaves the last complete index. Reads only files that look changed. An index of
/// another version, or a damaged one, is rebuilt. The result is the index that a rebuild would
/// give.
///
/// Throws `Error`, which names the path, when the repository cannot be listed, or the index cannot
/// be read or written, or belongs to another program.
RefreshResult refresh(const IndexOptions& options);

/// Opens the last complete state of the index without looking at the repository's files. Throws
/// `Error` when there is none that this version reads.
std::unique_ptr<RepositoryIndex> open(const IndexOptions& options);

/// Names all that the index leaves out, as its counts have it, ascending. Looks at the files anew
/// and reads the index, which must be up to date. Throws as `open` does.
std::vector<LeftOut> find_left_out(const IndexOptions& options);

struct RefreshedIndex {
  std::unique_ptr<RepositoryIndex> index;
  RefreshResult result;
};

/// Both in one: what is opened is what was refreshed, and damage found while opening is answered by
/// a rebuild, too.
RefreshedIndex refresh_and_open(const IndexOptions& options);

}  // namespace kestrix::index
