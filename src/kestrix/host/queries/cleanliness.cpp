#include "kestrix/host/queries/cleanliness.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "kestrix/files/file_reading.h"
#include "kestrix/files/uninterrupted.h"
#include "kestrix/git/object_id.h"

namespace kestrix {
namespace {

using index::FileStamp;
using index::TrackedState;

constexpr int kMostRead = 16;
constexpr std::size_t kMostBytes = std::size_t{16} << 20U;
constexpr std::int64_t kSecond = 1'000'000'000;

// Git may have been built to note whole seconds.
bool is_same_time(std::int64_t noted, std::int64_t found) {
  return noted == found || (noted % kSecond == 0 && noted / kSecond == found / kSecond);
}

class Comparison {
 public:
  Comparison(const index::RootDirectory& root, const index::WorkTree& tree,
             const index::RepositoryIndex& index)
      : root_(root), tree_(tree), index_(index) {}

  std::optional<bool> run() {
    for (std::size_t at = 0; at < tree_.tracked.size(); ++at) {
      const auto same = is_same(tree_.tracked[at], tree_.states[at]);
      if (same == false) return false;
      unknown_ = unknown_ || !same;
    }
    for (const auto& file : index_.files()) {
      if (!tree_.is_tracked(file.path)) return false;
    }
    if (unknown_ || !tree_.index_is_a_tree) return std::nullopt;
    return true;
  }

 private:
  std::optional<bool> is_same(const std::string& path, const TrackedState& state) {
    if (state.is_unmerged) return false;
    if (state.left_out) return true;
    const auto stamp = stamp_of(path, state.is_link);
    if (!stamp) return false;
    const bool untrusted = state.size == 0 && stamp->size > 0;
    if (static_cast<std::uint32_t>(stamp->size) != state.size && !untrusted) return false;
    // What was written in the moment in which git noted it may have been written once more.
    const bool racy = state.modified_ns >= tree_.index_stamp.modified_ns;
    const bool same = is_same_time(state.modified_ns, stamp->modified_ns) &&
                      is_same_time(state.changed_ns, stamp->changed_ns);
    return same && !racy && !untrusted ? std::optional(true) : has_same_content(path, state);
  }

  // None for what is not there, or of another kind.
  std::optional<FileStamp> stamp_of(const std::string& path, bool is_link) const {
    const auto file = index_.find(path);
    if (file && !is_link && index_.files()[*file].stamp.size >= 0)
      return index_.files()[*file].stamp;
    struct stat status {};
    const auto found = root_.open(path, O_PATH | O_NOFOLLOW);
    const auto look = [&] { return ::fstat(found.get(), &status); };
    if (!found || index::uninterrupted(look) != 0) return std::nullopt;
    const bool as_noted = is_link ? S_ISLNK(status.st_mode) : S_ISREG(status.st_mode);
    return as_noted ? std::optional(index::stamp_of(status)) : std::nullopt;
  }

  std::optional<bool> has_same_content(const std::string& path, const TrackedState& state) {
    if (state.is_link || !tree_.has_short_ids || ++read_ > kMostRead) return std::nullopt;
    const auto content = index::read_file(root_, path, kMostBytes);
    if (content.status != index::ReadStatus::kRead || content.truncated) return std::nullopt;
    if (index::blob_id(content.bytes) == state.id) return true;
    // A filter or a conversion of line ends may stand between the two.
    return tree_.may_convert ? std::nullopt : std::optional(false);
  }

  const index::RootDirectory& root_;
  const index::WorkTree& tree_;
  const index::RepositoryIndex& index_;
  bool unknown_ = false;
  int read_ = 0;
};

}  // namespace

std::optional<bool> is_clean(const index::RootDirectory& root, const index::WorkTree& tree,
                             const index::RepositoryIndex& index) {
  return Comparison(root, tree, index).run();
}

}  // namespace kestrix
