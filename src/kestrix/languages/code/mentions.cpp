#include "kestrix/languages/code/mentions.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace kestrix::index {

void order_mentions(std::vector<Mention>& mentions) {
  std::ranges::sort(mentions, {}, [](const Mention& mention) {
    return std::tie(mention.name, mention.role, mention.within);
  });
}

std::vector<Mention> Mentions::take() {
  order_mentions(mentions_);
  places_.clear();
  return std::move(mentions_);
}

}  // namespace kestrix::index
