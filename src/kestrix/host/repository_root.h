#pragma once

#include <filesystem>
#include <string>

#include "kestrix/files/root_directory.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

/// The root of a repository on disk. Its texts must not outlive it.
class RepositoryRoot : public RepoRoot {
 public:
  /// Throws `Error`, which names `path`, when it is not a directory.
  explicit RepositoryRoot(const std::filesystem::path& path)
      : RepositoryRoot(index::RootDirectory(path)) {}
  explicit RepositoryRoot(index::RootDirectory directory);

  Text text(const std::string& below, ReadTextOptions options) const override;

 private:
  std::string read(const std::string& below, std::size_t max_chars) const;

  index::RootDirectory directory_;
};

}  // namespace kestrix
