#include "kestrix/host/queries/revision.h"

#include <utility>

#include "kestrix/files/root_directory.h"
#include "kestrix/git/work_tree.h"

namespace kestrix {

std::optional<std::string> revision_of(const std::filesystem::path& directory) {
  auto lookup = index::find_work_tree(index::RootDirectory(directory));
  if (!lookup.work_tree || lookup.work_tree->commit.empty()) return std::nullopt;
  return std::move(lookup.work_tree->commit);
}

}  // namespace kestrix
