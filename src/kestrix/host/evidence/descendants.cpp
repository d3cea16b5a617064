#include "kestrix/host/evidence/descendants.h"

#include <set>

namespace kestrix {
namespace {

constexpr std::size_t kMostOfOne = 5'000;
constexpr std::size_t kMostOfAll = 300'000;

}  // namespace

std::vector<index::DeclarationRef> Descendants::of(index::DeclarationRef type) {
  if (looked_at_ > kMostOfAll) return evidence_.subtypes(type);
  std::set<index::DeclarationRef> known{type};
  std::vector<index::DeclarationRef> open{type};
  while (!open.empty() && known.size() < kMostOfOne) {
    const index::DeclarationRef next = open.back();
    open.pop_back();
    for (const index::DeclarationRef subtype : evidence_.subtypes(next)) {
      ++looked_at_;
      if (known.insert(subtype).second) open.push_back(subtype);
    }
  }
  known.erase(type);
  return {known.begin(), known.end()};
}

}  // namespace kestrix
