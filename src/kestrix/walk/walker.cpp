#include "kestrix/walk/walker.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "kestrix/files/directory_listing.h"
#include "kestrix/files/file_reading.h"
#include "kestrix/files/uninterrupted.h"
#include "kestrix/git/ignore_rules.h"
#include "kestrix/git/work_tree.h"
#include "kestrix/text/seeded_hash.h"
#include "kestrix/utils/error.h"
#include "kestrix/walk/third_party.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMaxIgnoreBytes = std::size_t{1} << 20;

// As much of an ignore file as is read, in whole lines: a pattern that is cut means another.
struct IgnoreText {
  std::string text;
  bool whole;
};

IgnoreText read_ignore_file(const RootDirectory& root, const std::string& path) {
  FileBytes content = read_file(root, path, kMaxIgnoreBytes);
  if (content.truncated) content.bytes.resize(content.bytes.rfind('\n') + 1);
  return {std::move(content.bytes),
          content.status != ReadStatus::kUnreadable && !content.truncated};
}

// Says what is walked. One implementation for git work trees, one for all else.
class Policy {
 public:
  Policy() = default;
  Policy(const Policy&) = delete;
  Policy& operator=(const Policy&) = delete;
  virtual ~Policy() = default;

  // Called before the directory's entries are asked for.
  virtual void enter(const DirectoryListing& directory) = 0;
  // Both give the reason to leave the entry out, "" to take it.
  virtual std::string_view reject_file(const std::string& path) = 0;
  virtual std::string_view reject_directory(const DirectoryListing& parent,
                                            const DirectoryEntry& entry,
                                            const std::string& path) = 0;
  virtual void finish(WalkResult& result, bool named) const = 0;
};

class Walk {
 public:
  Walk(const RootDirectory& root, const WalkOptions& options, Policy& policy)
      : root_(root), options_(options), policy_(policy) {}

  WalkResult run() {
    pending_.emplace_back();
    while (!pending_.empty()) {
      check_stop(options_.stop);
      std::string path = std::move(pending_.back());
      pending_.pop_back();
      visit(path);
    }
    std::ranges::sort(result_.files, {}, &WalkedFile::path);
    policy_.finish(result_, options_.name_left_out);
    std::ranges::sort(result_.left_out);
    return std::move(result_);
  }

 private:
  void visit(const std::string& path) {
    const auto directory = list_directory(root_, path, options_.stop);
    if (!directory) return refuse(path);
    policy_.enter(*directory);
    for (const DirectoryEntry& entry : directory->entries) {
      check_stop(options_.stop);
      take(*directory, entry);
    }
  }

  void refuse(const std::string& path) {
    if (!path.empty()) return leave_out(path + "/", skipped::kUnreadableDirectory);
    throw Error(
        fmt::format("{}: {}", root_.path().native(), std::generic_category().message(errno)));
  }

  void take(const DirectoryListing& directory, const DirectoryEntry& entry) {
    if (entry.name == ".git") return;
    std::string path = directory.path_of(entry.name);
    if (std::ranges::find(options_.excluded, path) != options_.excluded.end()) return;
    const bool is_directory = entry.kind == EntryKind::kDirectory;
    const std::string_view reason =
        is_directory ? policy_.reject_directory(directory, entry, path) : policy_.reject_file(path);
    if (!reason.empty())
      leave_out(is_directory ? path + "/" : path, reason);
    else if (is_directory)
      pending_.push_back(std::move(path));
    else if (entry.kind == EntryKind::kFile)
      result_.files.push_back({std::move(path), entry.stamp});
    else
      leave_out(path, entry.kind == EntryKind::kSymbolicLink ? skipped::kSymbolicLink
                                                             : skipped::kSpecial);
  }

  void leave_out(const std::string& path, std::string_view reason) {
    result_.leave_out(path, reason, options_.name_left_out);
  }

  const RootDirectory& root_;
  const WalkOptions& options_;
  Policy& policy_;
  WalkResult result_;
  std::vector<std::string> pending_;
};

bool is_repository(const RootDirectory& root, const std::string& path) {
  if (root.open(path + "/.git/HEAD", O_PATH)) return true;
  const FileDescriptor link = root.open(path + "/.git", O_PATH);
  struct stat status {};
  const auto look = [&] { return ::fstat(link.get(), &status); };
  return link && uninterrupted(look) == 0 && S_ISREG(status.st_mode);
}

class GitPolicy : public Policy {
 public:
  // `rules` are those of the directories above the root and outside the work tree.
  GitPolicy(const RootDirectory& root, const WorkTree& tree,
            std::shared_ptr<const IgnoreScope> rules, bool root_is_ignored)
      : root_(root), tree_(tree) {
    scopes_.push_back({"", std::move(rules), root_is_ignored});
  }

  void enter(const DirectoryListing& directory) override {
    while (!covers(scopes_.back().path, directory.path)) scopes_.pop_back();
    Scope scope{directory.path, scopes_.back().rules, std::nullopt};
    const DirectoryEntry* file = directory.find(".gitignore");
    if (file != nullptr && file->kind == EntryKind::kFile) {
      const std::string path = directory.path_of(file->name);
      const IgnoreText read = read_ignore_file(root_, path);
      if (!read.whole) cut_.push_back(path);
      scope.rules =
          std::make_shared<const IgnoreScope>(std::move(scope.rules), from_top(directory.path),
                                              IgnoreRules(read.text, tree_.ignore_case));
    }
    scopes_.push_back(std::move(scope));
  }

  std::string_view reject_file(const std::string& path) override {
    if (tree_.is_tracked(path)) {
      ++tracked_seen_;
      return {};
    }
    return is_ignored(path, false) ? skipped::kIgnored : std::string_view();
  }

  std::string_view reject_directory(const DirectoryListing&, const DirectoryEntry& entry,
                                    const std::string& path) override {
    if (tree_.is_submodule(path)) return skipped::kSubmodule;
    const std::size_t tracked = tree_.count_tracked_below(path);
    if (tracked == 0 && is_ignored(path, true)) return skipped::kIgnored;
    if (is_third_party(root_, entry.name, path)) {
      tracked_seen_ += tracked;
      return skipped::kThirdParty;
    }
    if (tracked > 0) return {};
    return is_repository(root_, path) ? skipped::kNestedRepository : std::string_view();
  }

  void finish(WalkResult& result, bool named) const override {
    for (const std::string& path : cut_) result.leave_out(path, skipped::kGitUnreadable, named);
    for (const std::string& folder : tree_.left_out) {
      result.leave_out(folder, skipped::kMissing, named);
    }
    const auto missing = tree_.tracked.size() - tracked_seen_;
    if (!named || missing == 0) return result.skipped.add(skipped::kMissing, missing);
    std::unordered_set<std::string, SeededHash> seen;
    for (const LeftOut& left : result.left_out) {
      const bool folder = left.path.ends_with('/');
      if (!folder || left.reason == skipped::kThirdParty) seen.insert(left.path);
    }
    for (const std::string& path : tree_.tracked) {
      const bool listed = std::ranges::binary_search(result.files, path, {}, &WalkedFile::path);
      if (!listed && !lies_in(seen, path)) result.leave_out(path, skipped::kMissing, true);
    }
  }

 private:
  struct Scope {
    std::string path;
    std::shared_ptr<const IgnoreScope> rules;  // may be none
    std::optional<bool> ignored;  // all in it, but for tracked files; found out when asked
  };

  // Whether the path or a folder of it is one of `left`.
  static bool lies_in(const std::unordered_set<std::string, SeededHash>& left,
                      const std::string& path) {
    if (left.contains(path)) return true;
    for (auto end = path.find('/'); end != path.npos; end = path.find('/', end + 1)) {
      if (left.contains(path.substr(0, end + 1))) return true;
    }
    return false;
  }

  static bool covers(std::string_view directory, std::string_view path) {
    return directory.empty() || (path.starts_with(directory) && path.size() > directory.size() &&
                                 path[directory.size()] == '/');
  }

  std::string from_top(const std::string& path) const {
    if (tree_.prefix.empty()) return path;
    return path.empty() ? tree_.prefix : tree_.prefix + "/" + path;
  }

  // Of an untracked file or directory in the directory that was entered last.
  bool is_ignored(const std::string& path, bool is_directory) {
    return all_is_ignored() || ignores(scopes_.back(), path, is_directory);
  }

  bool all_is_ignored() {
    std::size_t at = scopes_.size() - 1;
    while (!scopes_[at].ignored) --at;  // the first scope always knows
    for (++at; at < scopes_.size(); ++at) {
      const Scope& above = scopes_[at - 1];
      scopes_[at].ignored = *above.ignored || ignores(above, scopes_[at].path, true);
    }
    return *scopes_.back().ignored;
  }

  bool ignores(const Scope& scope, const std::string& path, bool is_directory) const {
    return !path.empty() && scope.rules->ignores(from_top(path), is_directory);
  }

  const RootDirectory& root_;
  const WorkTree& tree_;
  std::vector<Scope> scopes_;
  std::vector<std::string> cut_;  // ignore files of which not all was read
  std::size_t tracked_seen_ = 0;
};

constexpr std::array<std::string_view, 26> kFolders = {".bzr",          ".cache",
                                                       ".direnv",       ".eggs",
                                                       ".gradle",       ".hg",
                                                       ".idea",         ".ipynb_checkpoints",
                                                       ".jj",           ".mypy_cache",
                                                       ".next",         ".nox",
                                                       ".nuxt",         ".parcel-cache",
                                                       ".pytest_cache", ".ruff_cache",
                                                       ".sl",           ".svn",
                                                       ".terraform",    ".tox",
                                                       ".venv",         "CVS",
                                                       "__pycache__",   "__pypackages__",
                                                       "_darcs",        "bower_components"};

constexpr std::array<std::string_view, 4> kTargetOwners = {"Cargo.toml", "build.sbt", "pom.xml",
                                                           "project.clj"};

class PlainPolicy : public Policy {
 public:
  explicit PlainPolicy(const RootDirectory& root) : root_(root) {}

  void enter(const DirectoryListing&) override {}
  std::string_view reject_file(const std::string&) override { return {}; }

  std::string_view reject_directory(const DirectoryListing& parent, const DirectoryEntry& entry,
                                    const std::string& path) override {
    if (is_third_party(root_, entry.name, path)) return skipped::kThirdParty;
    const bool left_out = std::ranges::find(kFolders, entry.name) != kFolders.end() ||
                          is_build_target(parent, entry.name) || is_marked(path);
    return left_out ? skipped::kFolder : std::string_view();
  }

  void finish(WalkResult& /*result*/, bool /*named*/) const override {}

 private:
  // "target" may also be a package's name, deeper down.
  static bool is_build_target(const DirectoryListing& parent, std::string_view name) {
    if (name != "target") return false;
    return parent.path.empty() || std::ranges::any_of(kTargetOwners, [&](std::string_view owner) {
             return parent.find(owner) != nullptr;
           });
  }

  // Caches and virtual environments say that they are.
  bool is_marked(const std::string& path) const {
    return root_.open(path + "/CACHEDIR.TAG", O_PATH) || root_.open(path + "/pyvenv.cfg", O_PATH);
  }

  const RootDirectory& root_;
};

std::shared_ptr<const IgnoreScope> rules_outside(const WorkTree& tree) {
  auto global = std::make_shared<const IgnoreScope>(
      nullptr, "", IgnoreRules(tree.global_excludes, tree.ignore_case));
  return std::make_shared<const IgnoreScope>(std::move(global), "",
                                             IgnoreRules(tree.info_exclude, tree.ignore_case));
}

// What the directories above the root say of it.
struct Surroundings {
  std::shared_ptr<const IgnoreScope> rules;
  bool root_is_ignored = false;
  std::size_t cut = 0;  // ignore files of which not all was read
};

Surroundings surroundings_of(const WorkTree& tree) {
  Surroundings result{rules_outside(tree), false, tree.cut_excludes};
  if (tree.prefix.empty()) return result;
  for (std::size_t end = 0; end != std::string::npos;) {
    const std::string above = tree.prefix.substr(0, end);
    const std::string file = above.empty() ? ".gitignore" : above + "/.gitignore";
    const IgnoreText read = read_ignore_file(*tree.top, file);
    result.cut += read.whole ? 0 : 1;
    result.rules = std::make_shared<const IgnoreScope>(std::move(result.rules), above,
                                                       IgnoreRules(read.text, tree.ignore_case));
    end = tree.prefix.find('/', end == 0 ? 0 : end + 1);
    if (result.rules->ignores(tree.prefix.substr(0, end), true)) {
      result.root_is_ignored = true;
      return result;
    }
  }
  return result;
}

WalkResult walk_plainly(const RootDirectory& root, const WalkOptions& options) {
  PlainPolicy policy(root);
  return Walk(root, options, policy).run();
}

}  // namespace

void WalkResult::leave_out(const std::string& path, std::string_view reason, bool named) {
  skipped.add(reason);
  if (named) left_out.push_back({path, std::string(reason)});
}

WalkResult walk(const RootDirectory& root, const WalkOptions& options) {
  using enum WorkTreeLookup::Problem;
  const WorkTreeLookup found = find_work_tree(root);
  if (!found.work_tree) {
    WalkResult result = walk_plainly(root, options);
    const bool named = options.name_left_out;
    if (found.problem == kDamaged) result.leave_out("./", skipped::kGitUnreadable, named);
    if (found.problem == kForeign) result.leave_out("./", skipped::kGitForeign, named);
    std::ranges::sort(result.left_out);
    return result;
  }
  const WorkTree& tree = *found.work_tree;
  Surroundings around = surroundings_of(tree);
  if (around.root_is_ignored && tree.tracked.empty()) return walk_plainly(root, options);
  GitPolicy policy(root, tree, std::move(around.rules), around.root_is_ignored);
  WalkResult result = Walk(root, options, policy).run();
  for (std::size_t i = 0; i < around.cut; ++i) {
    result.leave_out("./", skipped::kGitUnreadable, options.name_left_out);
  }
  std::ranges::sort(result.left_out);
  return result;
}

}  // namespace kestrix::index
