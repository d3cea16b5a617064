#include "kestrix/host/settings/path_wishes.h"

#include <algorithm>

namespace kestrix {

PathWishes::PathWishes(const std::vector<PathWish>& wishes) {
  for (const PathWish& wish : wishes) {
    globs_.push_back({PathGlob(wish.glob), wish.include});
    identity_ += (wish.include ? '+' : '-') + wish.glob + '\n';
  }
}

bool PathWishes::takes(std::string_view path) const {
  const auto last = std::find_if(globs_.rbegin(), globs_.rend(),
                                 [path](const Glob& each) { return each.glob.matches(path); });
  return last == globs_.rend() || last->include;
}

}  // namespace kestrix
