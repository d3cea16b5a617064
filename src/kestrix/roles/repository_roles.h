#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/roles/bundles.h"
#include "kestrix/roles/judged_repository.h"
#include "kestrix/roles/path_roles.h"
#include "kestrix/roles/role.h"

namespace kestrix {

/// What each file is to its repository, by all that shows it: its path, its text, git's attributes,
/// its neighbours, and who depends on it. What names alone suggest, the code can refute: a folder
/// "tools" that the product depends on is the product. Git's attributes have the last word.
///
/// Made in time linear in the files and edges.
class RepositoryRoles {
 public:
  explicit RepositoryRoles(JudgedRepository repository);

  /// By file.
  const std::vector<Roles>& all() const { return roles_; }
  /// The same roles of one file with the evidence, one entry a role.
  std::vector<RoleEvidence> explain(JudgedRepository::Place file) const;

 private:
  using Place = JudgedRepository::Place;
  class Judgement;

  void read_paths();
  void find_clients();
  void find_used_data();
  void find_reached();
  bool refutes(std::string_view folder) const;

  void judge(Place file, Judgement& judgement) const;
  void judge_path(Place file, Judgement& judgement) const;
  void judge_neighbours(Place file, Judgement& judgement) const;
  void judge_attributes(std::string_view path, Judgement& judgement) const;

  JudgedRepository repository_;
  Bundles bundles_;
  std::map<std::string_view, bool>
      refuted_;  // folders named for a role: whether their files deny it
  std::map<std::string_view, std::string_view> clients_;  // what generators made: folder and mark
  std::vector<Roles> by_path_;
  std::vector<Roles> firm_;      // of those, what the product's dependence would not deny
  std::vector<bool> used_data_;  // lies among test data, and is used from elsewhere
  std::vector<bool> read_by_tests_;
  std::vector<bool> reached_;  // by way of imports from what is surely the product
  std::vector<Roles> roles_;
};

}  // namespace kestrix
