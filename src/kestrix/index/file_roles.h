#pragma once

#include <vector>

#include "kestrix/index/index.h"
#include "kestrix/roles/role.h"

namespace kestrix::index {

/// What each file is to the repository, by all that the index holds but the roles themselves. In
/// time linear in the index.
std::vector<Roles> roles_of_files(const RepositoryIndex& index);

/// The roles of one file, each with what decided. As costly as the roles of all.
std::vector<RoleEvidence> explain_roles(const RepositoryIndex& index, FileId file);

}  // namespace kestrix::index
