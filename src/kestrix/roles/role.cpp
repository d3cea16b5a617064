#include "kestrix/roles/role.h"

namespace kestrix {

std::string_view name_of(Role role) {
  switch (role) {
    case Role::kTest:
      return "test";
    case Role::kTestData:
      return "test data";
    case Role::kSample:
      return "sample";
    case Role::kTool:
      return "tool";
    case Role::kMigration:
      return "migration";
    case Role::kGenerated:
      return "generated";
    case Role::kVendored:
      return "vendored";
    case Role::kDocumentation:
      return "documentation";
    case Role::kArchived:
      return "archived";
  }
  return {};
}

Roles roles_of(const std::vector<RoleEvidence>& evidence) {
  Roles roles;
  for (const RoleEvidence& piece : evidence) roles.add(piece.role);
  return roles;
}

}  // namespace kestrix
