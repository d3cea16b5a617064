#include "kestrix/host/entry_points.h"

#include <algorithm>
#include <iterator>

#include "kestrix/host/path_glob.h"
#include "kestrix/text/sorting.h"

namespace kestrix {

EntryPointClass entry_points_matching(std::string_view pattern,
                                      std::span<const std::string> paths) {
  const PathGlob glob(pattern);
  EntryPointClass found{std::string(pattern), {}, "files that the pattern matches"};
  std::ranges::copy_if(paths, std::back_inserter(found.roots),
                       [&glob](const std::string& path) { return glob.matches(path); });
  sort_distinct(found.roots);
  return found;
}

}  // namespace kestrix
