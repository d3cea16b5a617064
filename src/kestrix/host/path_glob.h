#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/text/wildmatch.h"
#include "kestrix/utils/error.h"

namespace kestrix {

/// The pattern is no glob; the message names it.
class BadGlob : public Error {
 public:
  using Error::Error;
};

/// A pattern over repository-relative paths, read as git reads the pathspec ":(glob)PATTERN".
///
/// "*", "?" and "[…]" match within one directory level, "**" as a whole level stands for any number
/// of levels, and "\" takes the next character literally. Beyond git, "{a,b}" stands for either of
/// the patterns with "a" and with "b" in its place. The pattern covers the whole path from
/// the repository's top. One without wildcards names a file, or a directory and everything below
/// it; so does any pattern that ends in "/".
///
/// Paths are bytes and case counts. Safe to use from several threads.
class PathGlob {
 public:
  /// Throws `BadGlob` when the pattern is empty or malformed, or its braces have too many
  /// alternatives.
  explicit PathGlob(std::string_view pattern);

  /// Takes at most the pattern's length times the path's.
  bool matches(std::string_view path) const;

 private:
  struct Way {
    std::string end;  ///< of every path that it matches
    index::Wildmatch match;
  };

  void add(const std::string& pattern);

  std::vector<Way> ways_;
};

}  // namespace kestrix
