#include "kestrix/host/data_models/file_origin.h"

#include <algorithm>
#include <utility>

#include "kestrix/roles/generated.h"
#include "kestrix/roles/path_roles.h"

namespace kestrix {
namespace {

// The role that takes a file furthest from the product decides.
constexpr std::pair<Role, DataOrigin> kOrigins[] = {
    {Role::kVendored, DataOrigin::kVendored},   {Role::kGenerated, DataOrigin::kGenerated},
    {Role::kMigration, DataOrigin::kMigration}, {Role::kTest, DataOrigin::kAside},
    {Role::kSample, DataOrigin::kAside},        {Role::kTool, DataOrigin::kAside},
    {Role::kDocumentation, DataOrigin::kAside}};

}  // namespace

DataOrigin origin_of_path(std::string_view path) {
  const Roles roles = path_roles(path);
  for (const auto& [role, origin] : kOrigins) {
    if (roles.has(role)) return origin;
  }
  return DataOrigin::kProduct;
}

DataOrigin origin_of(std::string_view path, bool made_by_program) {
  const auto origin = origin_of_path(path);
  const bool made = made_by_program && !is_schema_dump(path);
  return made ? std::max(origin, DataOrigin::kGenerated) : origin;
}

}  // namespace kestrix
