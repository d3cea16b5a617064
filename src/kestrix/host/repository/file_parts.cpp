#include "kestrix/host/repository/file_parts.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <optional>

#include "kestrix/index/file_roles.h"

namespace kestrix {
namespace {

// Where the product has less than one in this many of the files of a role, that role is its
// product.
constexpr std::size_t kLeastShare = 10;

Role role_of(GivenRole given) {
  switch (given) {
    case GivenRole::kGenerated:
      return Role::kGenerated;
    case GivenRole::kVendored:
      return Role::kVendored;
    case GivenRole::kSample:
      return Role::kSample;
    case GivenRole::kTest:
      return Role::kTest;
  }
  return Role::kTest;
}

// The roles that most of the code has, so that without them little would be left.
Roles roles_of_most(std::span<const index::IndexedFile> files) {
  std::array<std::size_t, kRoles.size()> counts{};
  std::size_t product = 0;
  for (const auto& file : files) {
    if (file.language.empty()) continue;
    product += file.roles.empty() ? 1 : 0;
    for (const Role role : kRoles) {
      const bool counts_here = file.roles.has(role) && !file.roles.has(Role::kTest);
      counts[static_cast<std::size_t>(role)] += counts_here ? 1 : 0;
    }
  }
  Roles most;
  for (const Role role : kRoles) {
    const auto count = counts[static_cast<std::size_t>(role)];
    if (count > 0 && product * kLeastShare < count) most.add(role);
  }
  return most;
}

bool has_any(Roles roles, std::initializer_list<Role> of) {
  return std::ranges::any_of(of, [roles](Role role) { return roles.has(role); });
}

// Settings of editors, of checks that run elsewhere, templates for issues.
bool serves_developers(std::string_view path) {
  return path.starts_with('.') && path.find('/') != std::string_view::npos;
}

}  // namespace

FileParts::FileParts(const index::RepositoryIndex& index, const Steering* steering)
    : index_(index), steering_(steering) {
  const auto files = index_.files();
  const Roles most = roles_of_most(files);
  roles_.reserve(files.size());
  parts_.reserve(files.size());
  for (const auto& file : files) {
    Roles roles = file.roles;
    for (const Role role : kRoles) {
      if (most.has(role) && !file.roles.has(Role::kTest)) roles.remove(role);
    }
    const auto given = steering_ == nullptr ? std::nullopt : steering_->role_of(file.path);
    if (given) roles = Roles();
    if (given) roles.add(role_of(*given));
    roles_.push_back(roles);
    parts_.push_back(file.document ? 0U : parts_of(file.path, roles));
  }
}

unsigned char FileParts::parts_of(std::string_view path, Roles roles) {
  const bool test = roles.has(Role::kTest);
  const bool aside = serves_developers(path) || has_any(roles, {Role::kVendored, Role::kGenerated});
  if (test) return aside || roles.has(Role::kTestData) ? 0 : kTests;
  const bool shown = has_any(roles, {Role::kSample, Role::kDocumentation});
  return aside || shown ? kNameable : kNameable | kProduction;
}

std::string FileParts::explain(index::FileId file) const {
  const auto path = index_.files()[file].path;
  const auto given = steering_ == nullptr ? std::nullopt : steering_->role_of(path);
  if (given) return fmt::format("{}: so the settings say", to_string(*given));
  for (const RoleEvidence& piece : index::explain_roles(index_, file)) {
    if (!roles_[file].has(piece.role)) continue;
    return fmt::format("{}: {}", name_of(piece.role), piece.text);
  }
  return serves_developers(path) ? "tool: in a folder that is hidden" : "";
}

}  // namespace kestrix
