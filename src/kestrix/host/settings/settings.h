#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/settings/path_wishes.h"

namespace kestrix {

/// The roles that settings can give to paths.
enum class GivenRole { kGenerated, kVendored, kSample, kTest };

std::string_view to_string(GivenRole role);

/// Every file that a pattern matches has a role, whatever the program would find.
struct RoleSetting {
  GivenRole role;
  std::string glob;
  std::string from;
};

/// A class of entry points by name.
struct EntryPointSetting {
  std::string name;
  std::vector<std::string> globs;
  std::string from;
};

/// Files that stand on a page whatever its rule finds, or never do.
struct PageSetting {
  std::string page;
  std::string path;  ///< a file for a pin, a pattern for a ban
  bool pin = false;  ///< else a ban
  std::string from;
};

/// A number that bounds an answer.
struct LimitSetting {
  std::string name;  ///< "further" or "classes"
  std::size_t value = 0;
  std::string from;
};

/// What the user wishes of a repository's answers, each wish with its origin: "FILE:LINE" or an
/// option. Later ones come behind earlier ones.
struct Settings {
  std::vector<PathWish> paths;
  std::vector<RoleSetting> roles;
  std::vector<EntryPointSetting> entry_points;
  std::vector<PageSetting> pages;
  std::vector<LimitSetting> limits;
  std::vector<std::string> files;  ///< the settings files that were read

  /// The last number given for a name.
  std::optional<std::size_t> limit(std::string_view name) const;
};

/// Name of the settings file at a repository's top.
inline constexpr const char* kSettingsFile = ".page-sources.toml";

/// Adds what a settings file says; `name` is what messages call it. The text is data: it names
/// patterns and paths below the repository, and nothing else. Throws `Error`, which names file and
/// line, for anything that is no setting.
void add_settings(Settings& settings, std::string_view text, const std::string& name);

/// The user's settings, then those of the repository: "page-sources/config.toml" below
/// $XDG_CONFIG_HOME, else below ~/.config, then `kSettingsFile` at `root`. Files that are missing
/// say nothing. Throws `Error`, which names the file, for one that cannot be read or is wrong.
Settings read_settings(const std::filesystem::path& root);

}  // namespace kestrix
