#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/path_glob.h"

namespace kestrix {

/// A wish about which files count.
struct PathWish {
  std::string glob;      ///< a pattern of `PathGlob`
  bool include = false;  ///< else exclude
  std::string from{};    ///< where it was said, for people: a file with its line, or an option

  friend bool operator==(const PathWish&, const PathWish&) = default;
};

/// Which files of a repository count: of all wishes that match a path the last one decides, and a
/// path that none matches counts. Only takes away from what the repository's listing gives, and
/// takes back. Immutable; safe to use from several threads.
class PathWishes {
 public:
  PathWishes() = default;
  /// Throws `BadGlob`.
  explicit PathWishes(const std::vector<PathWish>& wishes);

  bool empty() const { return globs_.empty(); }
  bool takes(std::string_view path) const;
  /// Differs between lists that may choose different files; "" for the empty one.
  const std::string& identity() const { return identity_; }

 private:
  struct Glob {
    PathGlob glob;
    bool include;
  };

  std::vector<Glob> globs_;
  std::string identity_;
};

}  // namespace kestrix
