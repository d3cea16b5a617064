#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "kestrix/index/index.h"

namespace kestrix {

/// What a repository's files are a state of.
struct Revision {
  /// The commit that the work tree is at, in hexadecimal; none outside of a work tree and before
  /// its first commit.
  std::optional<std::string> commit;
  std::optional<bool> clean;  ///< as `is_clean` has it; none without a commit
};

/// The revision of the work tree around a directory whose index was just refreshed. Throws `Error`
/// when it is no directory.
Revision revision_of(const std::filesystem::path& directory, const index::RepositoryIndex& index);

}  // namespace kestrix
