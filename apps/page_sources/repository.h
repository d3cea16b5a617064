#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "apps/page_sources/answers.h"
#include "apps/page_sources/arguments.h"
#include "apps/page_sources/console.h"
#include "kestrix/index/refresh/indexer.h"
#include "kestrix/utils/stop.h"

namespace kestrix::program {

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
std::unique_ptr<Steering> steering_of(const CommonOptions& common);

/// Opens repositories for the subcommands, and tells what their users should know.
class Opener {
 public:
  Opener(Console& console, const StopFlag& stop) : console_(console), stop_(stop) {}

  /// Refreshes the index. Throws `Error`, which names the path.
  Opened open(const CommonOptions& common) const;

  /// Names what the index leaves out. Throws as `open` does.
  std::vector<index::LeftOut> left_out(const CommonOptions& common) const;

  /// A line for the user, unless they asked for quiet.
  void tell(const CommonOptions& common, std::string_view line) const;

 private:
  index::IndexOptions options_of(const CommonOptions& common, const Steering& steering) const;
  void tell_top(const CommonOptions& common, const std::filesystem::path& root) const;

  Console& console_;
  const StopFlag& stop_;
};

}  // namespace kestrix::program
