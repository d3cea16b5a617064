#include "kestrix/index/work_tree.h"

#include <git2.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "kestrix/index/file_reading.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxIgnoreBytes = std::size_t{1} << 20;

template <auto kFree>
struct Freed {
  template <class T>
  void operator()(T* object) const {
    kFree(object);
  }
};
using GitRepository = std::unique_ptr<git_repository, Freed<git_repository_free>>;
using GitIndex = std::unique_ptr<git_index, Freed<git_index_free>>;
using GitConfig = std::unique_ptr<git_config, Freed<git_config_free>>;

class GitText {
 public:
  GitText() = default;
  GitText(const GitText&) = delete;
  GitText& operator=(const GitText&) = delete;
  ~GitText() { git_buf_dispose(&buffer_); }

  git_buf* get() { return &buffer_; }
  std::string str() const { return {buffer_.ptr, buffer_.size}; }

 private:
  git_buf buffer_{};
};

// Shut down never: another user of the library in this process may still be at work.
void start_library() {
  static const bool started = [] {
    git_libgit2_init();
    // Nothing of the repository is executed, so another owner's is no danger.
    git_libgit2_opts(GIT_OPT_SET_OWNER_VALIDATION, 0);
    // None of these changes the index or the ignore rules.
    std::array extensions = {"partialclone", "preciousobjects", "worktreeconfig",
                             "relativeworktrees"};
    git_libgit2_opts(GIT_OPT_SET_EXTENSIONS, extensions.data(), extensions.size());
    return true;
  }();
  static_cast<void>(started);
}

bool has_git_above(const fs::path& directory) {
  std::error_code ignored;
  for (fs::path at = directory;; at = at.parent_path()) {
    if (fs::exists(fs::symlink_status(at / ".git", ignored))) return true;
    if (at == at.parent_path()) return false;
  }
}

std::optional<std::string> path_below(const fs::path& top, const fs::path& directory) {
  const std::string& whole = directory.native();
  std::string base = top.native();
  while (base.size() > 1 && base.ends_with('/')) base.pop_back();
  if (whole == base) return "";
  if (!base.ends_with('/')) base += '/';
  if (!whole.starts_with(base)) return std::nullopt;
  return whole.substr(base.size());
}

bool is_inside_git_data(std::string_view prefix) {
  return prefix == ".git" || prefix.starts_with(".git/") || prefix.ends_with("/.git") ||
         prefix.find("/.git/") != prefix.npos;
}

bool read_index(git_repository* repository, WorkTree& tree) {
  git_index* opened = nullptr;
  if (git_repository_index(&opened, repository) != 0) return false;
  const GitIndex index(opened);
  const std::string below = tree.prefix.empty() ? "" : tree.prefix + "/";
  const std::size_t count = git_index_entrycount(index.get());
  tree.tracked.reserve(count);
  for (std::size_t at = 0; at < count; ++at) {
    const git_index_entry* entry = git_index_get_byindex(index.get(), at);
    const std::string_view path = entry->path;
    if (!path.starts_with(below)) continue;
    auto& paths = entry->mode == GIT_FILEMODE_COMMIT ? tree.submodules : tree.tracked;
    paths.emplace_back(path.substr(below.size()));
  }
  for (auto* paths : {&tree.tracked, &tree.submodules}) {
    if (!std::ranges::is_sorted(*paths)) std::ranges::sort(*paths);
    const auto repeated = std::ranges::unique(*paths);  // a path in conflict has several entries
    paths->erase(repeated.begin(), repeated.end());
  }
  return true;
}

fs::path default_global_excludes() {
  if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg != nullptr && *xdg != '\0') {
    return fs::path(xdg) / "git/ignore";
  }
  const char* home = std::getenv("HOME");
  return home == nullptr ? fs::path() : fs::path(home) / ".config/git/ignore";
}

bool read_settings(git_repository* repository, WorkTree& tree) {
  git_config* opened = nullptr;
  if (git_repository_config_snapshot(&opened, repository) != 0) return false;
  const GitConfig config(opened);
  int ignore_case = 0;
  if (git_config_get_bool(&ignore_case, config.get(), "core.ignorecase") == 0) {
    tree.ignore_case = ignore_case != 0;
  }
  GitText excludes;
  const bool named = git_config_get_path(excludes.get(), config.get(), "core.excludesfile") == 0;
  const fs::path path = named ? fs::path(excludes.str()) : default_global_excludes();
  if (!path.empty()) tree.global_excludes = read_small_file(path, kMaxIgnoreBytes);
  return true;
}

bool read_info_exclude(git_repository* repository, WorkTree& tree) {
  GitText info;
  if (git_repository_item_path(info.get(), repository, GIT_REPOSITORY_ITEM_INFO) != 0) return false;
  tree.info_exclude = read_small_file(fs::path(info.str()) / "exclude", kMaxIgnoreBytes);
  return true;
}

bool contains(const std::vector<std::string>& sorted, std::string_view path) {
  return std::binary_search(sorted.begin(), sorted.end(), path);
}

}  // namespace

bool WorkTree::is_tracked(std::string_view path) const { return contains(tracked, path); }

bool WorkTree::is_submodule(std::string_view path) const { return contains(submodules, path); }

bool WorkTree::tracks_below(std::string_view directory) const {
  const std::string below = std::string(directory) + "/";
  const auto found = std::lower_bound(tracked.begin(), tracked.end(), below);
  return found != tracked.end() && found->starts_with(below);
}

WorkTreeLookup find_work_tree(const fs::path& directory) {
  if (!has_git_above(directory)) return {};
  start_library();
  git_repository* opened = nullptr;
  const int error = git_repository_open_ext(&opened, directory.c_str(), 0, nullptr);
  const GitRepository repository(opened);
  if (error != 0) {
    std::error_code ignored;
    return {{}, error != GIT_ENOTFOUND || fs::exists(directory / ".git", ignored)};
  }
  const char* work_directory = git_repository_workdir(repository.get());
  if (work_directory == nullptr) return {};
  std::error_code failure;
  WorkTree tree;
  tree.top = fs::canonical(work_directory, failure);
  auto prefix = failure ? std::nullopt : path_below(tree.top, directory);
  if (!prefix || is_inside_git_data(*prefix)) return {};
  tree.prefix = *std::move(prefix);
  const bool readable = read_index(repository.get(), tree) &&
                        read_settings(repository.get(), tree) &&
                        read_info_exclude(repository.get(), tree);
  if (!readable) return {{}, true};
  return {std::move(tree), false};
}

}  // namespace kestrix::index
