#include "kestrix/languages/code/mentions.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace kestrix::index {

std::vector<Mention> Mentions::take() {
  std::ranges::sort(mentions_, {}, [](const Mention& mention) {
    return std::tie(mention.name, mention.role, mention.within);
  });
  places_.clear();
  return std::move(mentions_);
}

}  // namespace kestrix::index
