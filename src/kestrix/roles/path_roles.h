#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "kestrix/roles/role.h"

namespace kestrix {

/// The roles of one path, each with what shows it. Views the path.
class PathSigns {
 public:
  struct Sign {
    std::string_view what;
    std::string_view folder;  ///< the path up to the folder that decided; "" where the name did
    bool refutable = false;   ///< whether the product's dependence on such a file would deny it
  };

  explicit PathSigns(std::string_view path);

  Roles roles() const { return roles_; }
  /// Of a role that it has.
  const Sign& sign(Role role) const { return signs_[static_cast<std::size_t>(role)]; }
  std::vector<RoleEvidence> evidence() const;

 private:
  void add(Role role, std::string_view what, std::string_view folder = {}, bool refutable = false);
  void add_test_signs(std::string_view path);
  void add_folder_signs(std::string_view path);
  void add_name_signs(std::string_view path);

  Roles roles_;
  std::array<Sign, kRoles.size()> signs_;
};

/// The roles that a path alone shows, by its folders and its name. What the text, the neighbours
/// and git's attributes show comes on top (repository_roles.h). `path` is relative to the
/// repository's root; only "/" parts it.
Roles path_roles(std::string_view path);

/// The same with the evidence, one entry a role, in the order of the roles.
std::vector<RoleEvidence> explain_path_roles(std::string_view path);

/// Whether a path has the role `kTest`. In the time of `path_roles`' first step: the detectors ask
/// it of every path, often.
bool is_test_by_path(std::string_view path);

/// Whether a folder, or a file without its ending, is named for what tests are written with:
/// "test-utils", "testing_support".
bool is_named_for_tests(std::string_view name);

}  // namespace kestrix
