#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/page_answer.h"
#include "kestrix/host/settings/settings.h"
#include "kestrix/index/index.h"

namespace kestrix {

/// Settings in force: what the user wishes, ready to be asked of every path and answer. Immutable;
/// safe to use from several threads.
class Steering {
 public:
  /// Throws `BadGlob`.
  explicit Steering(Settings settings);

  const Settings& settings() const { return settings_; }

  /// Whether the repository's files are all taken as they are.
  bool takes_all() const { return wishes_.empty() && !has_role(GivenRole::kVendored); }
  /// Whether a file is looked at: it is not excluded, and not another project's.
  bool takes(std::string_view path) const;
  /// Differs between settings that may take different files; "" when all are taken.
  std::string choice() const;

  /// The role that the last matching setting gives.
  std::optional<GivenRole> role_of(std::string_view path) const;

  /// Puts pins before the further files, takes bans out, and cuts the further files to their limit.
  /// A pin that the index has no file for is passed over.
  void apply(std::string_view page, const index::RepositoryIndex& index, PageAnswer& answer) const;
  /// Takes bans out of every class, and cuts the further files to their limit.
  void apply(FlowsAnswer& answer) const;

 private:
  struct Role {
    GivenRole role;
    PathGlob glob;
  };

  bool has_role(GivenRole role) const;
  bool is_banned(std::string_view page, std::string_view path) const;
  void cut_further(std::vector<Pick>& further) const;

  Settings settings_;
  PathWishes wishes_;
  std::vector<Role> roles_;
  std::vector<std::optional<PathGlob>> bans_;  // one for each of the settings' `pages`
};

}  // namespace kestrix
