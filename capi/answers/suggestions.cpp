#include "capi/answers/suggestions.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace kestrix {
namespace {

constexpr std::size_t kLongestWord = 64;

// How many letters were changed, left out, added, or swapped with their neighbour.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        rows[i][j] = i + j;
        continue;
      }
      rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1,
                             rows[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[a.size()][b.size()];
}

}  // namespace

std::string nearest(std::string_view word, std::span<const std::string> candidates) {
  if (word.size() > kLongestWord) return {};
  std::string best;
  std::size_t least = std::max<std::size_t>(word.size() > 3 ? 2 : 1, word.size() / 3) + 1;
  for (const std::string& candidate : candidates) {
    const bool begins = word.size() >= 3 && candidate.starts_with(word);
    const std::size_t apart = begins ? 1 : distance(word, candidate);
    if (apart >= least) continue;
    least = apart;
    best = candidate;
  }
  return best;
}

std::string did_you_mean(std::string_view word, std::span<const std::string> candidates) {
  const std::string near = nearest(word, candidates);
  return near.empty() ? "" : fmt::format("; did you mean {}?", near);
}

}  // namespace kestrix
