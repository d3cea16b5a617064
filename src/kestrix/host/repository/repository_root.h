#pragma once

#include <filesystem>
#include <string>

#include "kestrix/files/root_directory.h"
#include "kestrix/index/index.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

/// The root of a repository on disk. Its texts must not outlive it.
class RepositoryRoot : public RepoRoot {
 public:
  /// What `index` knows of a text comes with it, unless it is null; it must outlive the root.
  /// Throws `Error`, which names `path`, when it is not a directory.
  explicit RepositoryRoot(const std::filesystem::path& path,
                          const index::RepositoryIndex* index = nullptr)
      : RepositoryRoot(index::RootDirectory(path), index) {}
  RepositoryRoot(index::RootDirectory directory, const index::RepositoryIndex* index);

  Text text(const std::string& below, ReadTextOptions options) const override;

 private:
  std::string read(const std::string& below, std::size_t max_chars) const;

  index::RootDirectory directory_;
  const index::RepositoryIndex* index_;
};

}  // namespace kestrix
