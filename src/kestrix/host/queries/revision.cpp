#include "kestrix/host/queries/revision.h"

#include <utility>

#include "kestrix/files/root_directory.h"
#include "kestrix/git/work_tree.h"
#include "kestrix/host/queries/cleanliness.h"

namespace kestrix {

Revision revision_of(const std::filesystem::path& directory, const index::RepositoryIndex& index) {
  const index::RootDirectory root(directory);
  auto lookup = index::find_work_tree(root, true);
  if (!lookup.work_tree || lookup.work_tree->commit.empty()) return {};
  const auto clean = is_clean(root, *lookup.work_tree, index);
  return {std::move(lookup.work_tree->commit), clean};
}

}  // namespace kestrix
