// What git leaves in a repository, which nobody vouches for. The input's first byte picks a format,
// the rest is the file: the index, the configuration, or ignore rules after a line with a path.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "fuzz/scratch_directory.h"
#include "kestrix/git/git_config.h"
#include "kestrix/git/git_index.h"
#include "kestrix/git/ignore_rules.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix::index {
namespace {

using test::require;

void read_index(std::string_view content) {
  for (const std::size_t id_bytes : {20U, 32U}) {
    const auto all = read_git_index(content, "", id_bytes);
    const auto below = read_git_index(content, "a/", id_bytes);
    if (!all || !below) continue;
    require(std::ranges::is_sorted(all->files), "tracked files ascend");
    for (const std::string& path : below->files) {
      require(std::ranges::binary_search(all->files, "a/" + path), "a prefix is only taken off");
    }
  }
}

void read_config(std::string_view text) {
  static const test::ScratchDirectory scratch;
  const auto file = scratch.write("config", text);
  GitConfig config(scratch / "work/.git");
  config.read(file);
  for (const char* name : {"core.excludesfile", "core.worktree"}) {
    require(config.path(name).has_value() == config.value(name).has_value(), "a path is a value");
  }
}

// Wildmatch without sets, by trying every way.
class SlowWildmatch {
 public:
  explicit SlowWildmatch(std::string_view pattern) : pattern_(pattern) {}

  bool matches(std::size_t at, std::string_view path) const {
    if (at == pattern_.size()) return path.empty();
    if (pattern_[at] == '*') return matches_stars(at, path);
    const bool escape = pattern_[at] == '\\';
    if (escape && at + 1 == pattern_.size()) return false;
    if (path.empty()) return false;
    if (pattern_[at] == '?') return path.front() != '/' && matches(at + 1, path.substr(1));
    if (escape) ++at;
    return path.front() == pattern_[at] && matches(at + 1, path.substr(1));
  }

 private:
  bool matches_stars(std::size_t at, std::string_view path) const {
    const auto end = std::min(pattern_.find_first_not_of('*', at), pattern_.size());
    const bool starts = at == 0 || pattern_[at - 1] == '/';
    const bool ends = end == pattern_.size() || pattern_[end] == '/';
    const bool crosses = end - at > 1 && starts && ends;
    if (crosses && end == pattern_.size()) return true;
    const std::size_t next = crosses ? end + 1 : end;
    for (std::size_t i = 0; i <= path.size(); ++i) {
      const bool possible = !crosses || i == 0 || path[i - 1] == '/';
      if (possible && matches(next, path.substr(i))) return true;
      if (!crosses && i < path.size() && path[i] == '/') return false;
    }
    return false;
  }

  std::string_view pattern_;
};

void compare(std::string_view pattern, std::string_view path) {
  constexpr std::size_t kSmall = 12;
  const Wildmatch fast(pattern);
  const bool found = fast.matches(path);
  if (pattern.size() > kSmall || path.size() > kSmall || !fast.is_valid()) return;
  if (pattern.find('[') != pattern.npos) return;
  require(found == SlowWildmatch(pattern).matches(0, path), "a wildmatch equals its slow version");
}

void read_ignore_rules(std::string_view text) {
  const auto newline = std::min(text.find('\n'), text.size());
  const std::string_view path = text.substr(0, newline);
  const std::string_view rules = text.substr(std::min(newline + 1, text.size()));
  compare(rules.substr(0, rules.find('\n')), path);
  for (const bool ignore_case : {false, true}) {
    const IgnoreRules read(rules, ignore_case);
    if (read.judge(path, false) == read.judge(path, true)) continue;
    require(rules.find('/') != rules.npos, "only a rule for directories tells them from files");
  }
}

}  // namespace
}  // namespace kestrix::index

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix::index;  // NOLINT(google-build-using-namespace)
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  switch (*data % 3) {
    case 0:
      read_index(text);
      break;
    case 1:
      read_config(text);
      break;
    default:
      read_ignore_rules(text);
  }
  return 0;
}
