#pragma once

#include <map>
#include <string>
#include <string_view>

#include "kestrix/roles/judged_repository.h"

namespace kestrix {

/// The folders of a repository that hold another project, each with what shows it: a licence that
/// names nobody whom the repository's own names, a version in the name of a folder that stands for
/// itself, a place among such folders. Third-party code knows nothing of the product: a folder
/// whose files depend on it is none, nor is one that holds half of the repository's code.
///
/// Linear in the files and edges, but for folders within each other, of which a bounded number is
/// looked at. Views the repository.
using Bundles = std::map<std::string_view, std::string>;
Bundles bundled_folders(const JudgedRepository& repository);

/// Whether the code below a folder depends on files elsewhere, so that it is no other project's.
bool depends_on_the_rest(const JudgedRepository& repository, JudgedRepository::Range folder);

/// Whether a script or style sheet carries a version in its name ("chart-4.4.1.min.js").
bool is_versioned_script(std::string_view path);

}  // namespace kestrix
