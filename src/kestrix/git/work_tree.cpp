#include "kestrix/git/work_tree.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

#include "kestrix/files/file_reading.h"
#include "kestrix/git/git_config.h"
#include "kestrix/git/git_index.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxIgnoreBytes = std::size_t{1} << 20;
constexpr std::size_t kMaxIndexBytes = std::size_t{256} << 20;  // some three million files
constexpr std::size_t kMaxLinkBytes = std::size_t{16} << 10;

bool is_there(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

std::string first_line(const fs::path& file) {
  std::string text = read_small_file(file, kMaxLinkBytes);
  text.resize(std::min(text.find_last_not_of("\r\n") + 1, text.size()));
  return text;
}

// Where a work tree's data lies: a linked work tree has an index of its own and shares the rest.
struct GitDirectories {
  fs::path own;
  fs::path common;
};

// "gitdir: PATH" in place of the directory.
fs::path follow_link(const fs::path& place) {
  constexpr std::string_view kLink = "gitdir: ";
  std::error_code ignored;
  if (!fs::is_regular_file(place, ignored)) return place;
  const std::string text = first_line(place);
  return text.starts_with(kLink) ? place.parent_path() / text.substr(kLink.size()) : place;
}

std::optional<GitDirectories> git_directories(const fs::path& place) {
  std::error_code failure;
  const fs::path own = fs::canonical(follow_link(place), failure);
  if (failure) return std::nullopt;
  const std::string shared = first_line(own / "commondir");
  const fs::path common = shared.empty() ? own : fs::canonical(own / shared, failure);
  const std::string head = first_line(own / "HEAD");
  const bool has_head =
      head.starts_with("ref: ") || (head.size() >= 40 && std::ranges::all_of(head, ascii::is_word));
  if (failure || !has_head || !is_there(common / "objects") || !is_there(common / "refs")) {
    return std::nullopt;
  }
  return GitDirectories{own, common};
}

std::optional<std::string> path_below(const fs::path& top, const fs::path& directory) {
  const std::string& whole = directory.native();
  if (whole == top.native()) return "";
  const std::string base = top == top.root_path() ? top.native() : top.native() + "/";
  if (!whole.starts_with(base)) return std::nullopt;
  return whole.substr(base.size());
}

bool is_inside_git_data(std::string_view prefix) {
  return prefix == ".git" || prefix.starts_with(".git/") || prefix.ends_with("/.git") ||
         prefix.find("/.git/") != prefix.npos;
}

// The repository's own settings; those of the user come first.
bool read_config(const fs::path& holder, const GitDirectories& git, GitConfig& config) {
  config.confine_to({holder, git.own, git.common});
  if (!config.read(git.common / "config")) return false;
  return !config.is_true("extensions.worktreeconfig") || config.read(git.own / "config.worktree");
}

bool read_index(const GitDirectories& git, const GitConfig& config, WorkTree& tree) {
  const fs::path file = git.own / "index";
  if (!is_there(file)) return true;  // nothing was ever added
  const std::string below = tree.prefix.empty() ? "" : tree.prefix + "/";
  const bool long_ids = config.value("extensions.objectformat") == "sha256";
  auto paths = read_git_index(read_small_file(file, kMaxIndexBytes), below, long_ids ? 32 : 20);
  if (!paths) return false;
  tree.tracked = std::move(paths->files);
  tree.submodules = std::move(paths->submodules);
  return true;
}

fs::path default_global_excludes() {
  const std::string xdg = environment("XDG_CONFIG_HOME");
  if (!xdg.empty()) return fs::path(xdg) / "git/ignore";
  const std::string home = environment("HOME");
  return home.empty() ? fs::path() : fs::path(home) / ".config/git/ignore";
}

// The user may keep the excludes anywhere, the repository only in itself.
fs::path global_excludes(const std::optional<fs::path>& by_user, const GitConfig& config,
                         const WorkTree& tree) {
  const auto named = config.path("core.excludesfile");
  if (named && named != by_user && config.admits(tree.top / *named)) return *named;
  return by_user.value_or(default_global_excludes());
}

void read_excludes(const GitDirectories& git, const fs::path& global, const GitConfig& config,
                   WorkTree& tree) {
  tree.ignore_case = config.is_true("core.ignorecase");
  tree.info_exclude = read_small_file(git.common / "info/exclude", kMaxIgnoreBytes);
  if (!global.empty()) tree.global_excludes = read_small_file(tree.top / global, kMaxIgnoreBytes);
}

// The directory whose ".git" it is, unless the configuration names one in it.
std::optional<fs::path> top_of(const fs::path& holder, const GitDirectories& git,
                               const GitConfig& config) {
  if (config.is_true("core.bare")) return std::nullopt;
  const auto named = config.path("core.worktree");
  if (!named) return holder;
  std::error_code failure;
  fs::path top = fs::canonical(git.own / *named, failure);
  if (failure || !path_below(holder, top)) return std::nullopt;
  return top;
}

WorkTreeLookup read_work_tree(const fs::path& holder, const GitDirectories& git,
                              const fs::path& directory) {
  constexpr bool kDamaged = true;
  GitConfig config(git.own);
  if (!config.read_user_files()) return {{}, kDamaged};
  const auto users_excludes = config.path("core.excludesfile");
  if (!read_config(holder, git, config)) return {{}, kDamaged};
  const auto top = top_of(holder, git, config);
  auto prefix = top ? path_below(*top, directory) : std::nullopt;
  if (!prefix || is_inside_git_data(*prefix)) return {};
  WorkTree tree;
  tree.top = *top;
  tree.prefix = *std::move(prefix);
  read_excludes(git, global_excludes(users_excludes, config, tree), config, tree);
  if (!read_index(git, config, tree)) return {{}, kDamaged};
  return {std::move(tree), !kDamaged};
}

// Like git, the search for a work tree does not leave the file system.
std::uint64_t device_of(const fs::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

bool contains(const std::vector<std::string>& sorted, std::string_view path) {
  return std::binary_search(sorted.begin(), sorted.end(), path);
}

}  // namespace

bool WorkTree::is_tracked(std::string_view path) const { return contains(tracked, path); }

bool WorkTree::is_submodule(std::string_view path) const { return contains(submodules, path); }

std::size_t WorkTree::count_tracked_below(std::string_view directory) const {
  const auto first = std::ranges::lower_bound(tracked, std::string(directory) + "/");
  // "0" follows "/" in the order of bytes.
  const auto last = std::lower_bound(first, tracked.end(), std::string(directory) + "0");
  return static_cast<std::size_t>(last - first);
}

WorkTreeLookup find_work_tree(const fs::path& directory) {
  const bool expected = is_there(directory / ".git");
  const auto device = device_of(directory);
  for (fs::path holder = directory; device_of(holder) == device; holder = holder.parent_path()) {
    if (const auto git = git_directories(holder / ".git")) {
      return read_work_tree(holder, *git, directory);
    }
    if (holder == holder.parent_path()) break;
  }
  return {{}, expected};
}

}  // namespace kestrix::index
