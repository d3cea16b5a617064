#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "capi/answers/answers.h"
#include "kestrix/index/refresh/indexer.h"
#include "kestrix/utils/stop.h"

namespace kestrix {

/// Which repository is asked about, and how its index is brought up to date.
struct RepositoryOptions {
  std::filesystem::path repository = ".";
  std::optional<std::filesystem::path>
      index;                     ///< the index's file; else one in the cache directory
  unsigned threads = 0;          ///< 0: as many as the machine has
  std::vector<PathWish> wishes;  ///< behind those of the settings; the last match decides
};

/// How the work on an index goes on. Both may be left out.
struct Conduct {
  const StopFlag* stop = nullptr;
  /// Called on the calling thread for each file that was read.
  std::function<void(std::size_t done, std::size_t total)> progress;
};

/// A repository whose index is up to date.
struct Opened {
  std::filesystem::path root;  // absolute, without symbolic links
  std::unique_ptr<index::RepositoryIndex> index;
  index::RefreshResult refresh;
  std::unique_ptr<Steering> steering;  // never null

  WikiGenerator generator() const { return {*index, root, steering.get()}; }
  /// What a document says of the repository; looks at git's data.
  About about() const;
};

/// The settings in force for a repository: those of files, then those of options. Throws `Error`,
/// which names file and line, for wrong ones.
std::unique_ptr<Steering> steering_of(const RepositoryOptions& options);

/// Refreshes the index and opens it. Throws `Error`, which names the path, and `StopRequest`.
Opened open_repository(const RepositoryOptions& options, const Conduct& conduct);

/// Names what the index leaves out. Throws as `open_repository` does.
std::vector<index::LeftOut> left_out_of(const RepositoryOptions& options, const Conduct& conduct);

}  // namespace kestrix
