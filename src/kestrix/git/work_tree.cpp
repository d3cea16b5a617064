#include "kestrix/git/work_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "kestrix/files/file_reading.h"
#include "kestrix/files/uninterrupted.h"
#include "kestrix/git/git_config.h"
#include "kestrix/git/git_index.h"
#include "kestrix/git/head.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxIgnoreBytes = std::size_t{1} << 20;
constexpr std::size_t kMaxIndexBytes = std::size_t{256} << 20;  // some three million files
constexpr std::size_t kMaxLinkBytes = std::size_t{16} << 10;

constexpr const char* kGit = ".git";

bool is_there(const RootDirectory& directory, std::string_view name) {
  return static_cast<bool>(directory.open(name, O_PATH));
}

// Of what stands at the path itself, not of what a link leads to; all zero for nothing.
struct stat status_of(const RootDirectory& directory, std::string_view name) {
  struct stat status {};
  const FileDescriptor found = directory.open(name, O_PATH);
  const auto look = [&] { return ::fstat(found.get(), &status); };
  if (!found || uninterrupted(look) != 0) return {};
  return status;
}

std::string first_line(const RootDirectory& directory, std::string_view name) {
  std::string text = whole_text(read_file(directory, name, kMaxLinkBytes));
  text.resize(std::min(text.find_last_not_of("\r\n") + 1, text.size()));
  return text;
}

// Where a work tree's data lies: a linked work tree has an index of its own and shares the rest.
struct GitDirectories {
  RootDirectory own;
  RootDirectory common;
};

// What ".git" stands for: a directory, a link to one, or a file that says "gitdir: PATH". The two
// latter may lead anywhere, as linked work trees need it; nothing is read there but git's data.
std::optional<RootDirectory> own_directory(const RootDirectory& holder) {
  constexpr std::string_view kLink = "gitdir: ";
  const struct stat status = status_of(holder, kGit);
  if (S_ISDIR(status.st_mode)) return holder.below(kGit);
  if (S_ISLNK(status.st_mode)) return RootDirectory::find(holder.path() / kGit);
  const std::string text = S_ISREG(status.st_mode) ? first_line(holder, kGit) : "";
  if (!text.starts_with(kLink)) return std::nullopt;
  return RootDirectory::find(holder.path() / text.substr(kLink.size()));
}

std::optional<GitDirectories> git_directories(const RootDirectory& holder) {
  auto own = own_directory(holder);
  if (!own) return std::nullopt;
  const std::string shared = first_line(*own, "commondir");
  auto common = shared.empty() ? own->below("") : RootDirectory::find(own->path() / shared);
  const std::string head = first_line(*own, "HEAD");
  const bool has_head =
      head.starts_with("ref: ") || (head.size() >= 40 && std::ranges::all_of(head, ascii::is_word));
  if (!common || !has_head || !is_there(*common, "objects") || !is_there(*common, "refs")) {
    return std::nullopt;
  }
  return GitDirectories{*std::move(own), *std::move(common)};
}

bool is_inside_git_data(std::string_view prefix) {
  return prefix == ".git" || prefix.starts_with(".git/") || prefix.ends_with("/.git") ||
         prefix.find("/.git/") != prefix.npos;
}

// The repository's own settings; those of the user come first.
bool read_config(const RootDirectory& holder, const GitDirectories& git, GitConfig& config) {
  config.confine_to({&holder, &git.own, &git.common});
  if (!config.read(git.common.path() / "config")) return false;
  return !config.is_true("extensions.worktreeconfig") ||
         config.read(git.own.path() / "config.worktree");
}

bool read_index(const GitDirectories& git, const GitConfig& config, bool with_states,
                WorkTree& tree) {
  FileBytes content = read_file(git.own, "index", kMaxIndexBytes);
  if (content.status == ReadStatus::kVanished) return true;  // nothing was ever added
  const std::string below = tree.prefix.empty() ? "" : tree.prefix + "/";
  const bool long_ids = config.value("extensions.objectformat") == "sha256";
  tree.index_stamp = content.stamp;
  tree.has_short_ids = !long_ids;
  auto paths =
      read_git_index(whole_text(std::move(content)), below, long_ids ? 32 : 20, with_states);
  if (!paths) return false;
  tree.tracked = std::move(paths->files);
  tree.submodules = std::move(paths->submodules);
  tree.left_out = std::move(paths->left_out);
  tree.states = std::move(paths->states);
  tree.index_is_a_tree = paths->is_a_tree;
  return true;
}

fs::path default_global_excludes() {
  const std::string xdg = environment("XDG_CONFIG_HOME");
  if (!xdg.empty()) return fs::path(xdg) / "git/ignore";
  const std::string home = environment("HOME");
  return home.empty() ? fs::path() : fs::path(home) / ".config/git/ignore";
}

// The user may keep the excludes anywhere, the repository only in itself.
FileBytes global_excludes(const std::optional<fs::path>& by_user, const GitConfig& config,
                          const fs::path& top) {
  const auto named = config.path("core.excludesfile");
  if (named && named != by_user && config.admits(top / *named)) {
    return config.read_admitted(top / *named, kMaxIgnoreBytes);
  }
  const fs::path users = by_user.value_or(default_global_excludes());
  return users.empty() ? FileBytes() : read_users_file(top / users, kMaxIgnoreBytes);
}

std::string excludes_of(FileBytes content, WorkTree& tree) {
  if (content.truncated || content.status == ReadStatus::kUnreadable) ++tree.cut_excludes;
  return whole_text(std::move(content));
}

// The directory whose ".git" it is, unless the configuration names one in it.
std::optional<RootDirectory> top_of(const RootDirectory& holder, const GitDirectories& git,
                                    const GitConfig& config) {
  if (config.is_true("core.bare")) return std::nullopt;
  const auto named = config.path("core.worktree");
  if (!named) return holder.below("");
  std::error_code failure;
  const fs::path top = fs::weakly_canonical(git.own.path() / *named, failure);
  const auto relative = path_below(holder.path(), top);
  return failure || !relative ? std::nullopt : holder.below(*relative);
}

// Git obeys no data of another user, as that could make it run programs. Nothing is run here, but
// neither should somebody's ".git" in a folder above decide what is read.
bool is_of_another_user(const RootDirectory& holder, const GitDirectories& git) {
  uid_t user = ::geteuid();
  const std::string caller = environment("SUDO_UID");
  const auto owns = [&](uid_t owner) {
    return owner == user || (user == 0 && !caller.empty() && caller == std::to_string(owner));
  };
  return !owns(status_of(holder, "").st_uid) || !owns(status_of(holder, kGit).st_uid) ||
         !owns(status_of(git.own, "").st_uid);
}

WorkTreeLookup read_work_tree(const RootDirectory& holder, const GitDirectories& git,
                              const fs::path& directory, bool with_states) {
  using enum WorkTreeLookup::Problem;
  GitConfig config(git.own.path());
  if (!config.read_user_files()) return {{}, kDamaged};
  const bool is_above = holder.path() != directory;
  if (is_above && is_of_another_user(holder, git) && !config.is_safe(holder.path())) {
    return {{}, kForeign};
  }
  const auto users_excludes = config.path("core.excludesfile");
  if (!read_config(holder, git, config)) return {{}, kDamaged};
  auto top = top_of(holder, git, config);
  auto prefix = top ? path_below(top->path(), directory) : std::nullopt;
  if (!prefix || is_inside_git_data(*prefix)) return {};
  WorkTree tree;
  tree.prefix = *std::move(prefix);
  tree.commit = head_commit(git.own, git.common);
  tree.ignore_case = config.is_true("core.ignorecase");
  tree.may_convert = config.value("core.autocrlf").has_value() ||
                     is_there(*top, ".gitattributes") || is_there(git.common, "info/attributes");
  tree.info_exclude = excludes_of(read_file(git.common, "info/exclude", kMaxIgnoreBytes), tree);
  tree.global_excludes = excludes_of(global_excludes(users_excludes, config, top->path()), tree);
  tree.top = std::make_shared<const RootDirectory>(*std::move(top));
  if (!read_index(git, config, with_states, tree)) return {{}, kDamaged};
  return {std::move(tree), kNone};
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

// Like git, the search for a work tree does not leave the file system.
WorkTreeLookup find_work_tree(const RootDirectory& directory, bool with_states) {
  using enum WorkTreeLookup::Problem;
  const auto device = status_of(directory, "").st_dev;
  auto holder = directory.below("");
  while (holder && status_of(*holder, "").st_dev == device) {
    if (const auto git = git_directories(*holder)) {
      return read_work_tree(*holder, *git, directory.path(), with_states);
    }
    const fs::path parent = holder->path().parent_path();
    holder = parent == holder->path() ? std::nullopt : RootDirectory::find(parent);
  }
  return {{}, is_there(directory, kGit) ? kDamaged : kNone};
}

}  // namespace kestrix::index
