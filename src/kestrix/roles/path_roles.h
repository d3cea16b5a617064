#pragma once

#include <string_view>
#include <vector>

#include "kestrix/roles/role.h"

namespace kestrix {

/// The roles that a path alone shows, by its folders and its name. What the text, the neighbours
/// and git's attributes show comes on top (repository_roles.h). `path` is relative to the
/// repository's root; only "/" parts it.
Roles path_roles(std::string_view path);

/// The same with the evidence, one entry a role, in the order of the roles.
std::vector<RoleEvidence> explain_path_roles(std::string_view path);

/// Whether a path has the role `kTest`. In the time of `path_roles`' first step: the detectors ask
/// it of every path, often.
bool is_test_by_path(std::string_view path);

}  // namespace kestrix
