#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/host/reason.h"

namespace kestrix {

/// How many files a page has at most, the rule's and the further ones together.
inline constexpr std::size_t kMostPageFiles = 12;
/// How many further files a page may have whose rule gives `kMostPageFiles` or more.
inline constexpr std::size_t kFurtherOfFullPage = 4;

/// How many further files may follow `given` files of the rule.
constexpr std::size_t room_for_further(std::size_t given) {
  return given >= kMostPageFiles ? kFurtherOfFullPage : kMostPageFiles - given;
}

/// The answer for one page.
struct PageAnswer {
  std::vector<Pick> files;    ///< exactly what the page's detector returned, in its order
  std::vector<Pick> further;  ///< best first, none of `files`; at most `room_for_further`
  std::uint64_t total = 0;  ///< files that the rule found before its limit; never fewer than given
  bool truncated = false;   ///< whether the rule's limit left some of them out
  std::string nothing_found;         ///< what was looked for in vain, when both lists are empty
  std::optional<bool> has_material;  ///< errors only: whether the index has an exception class
};

/// Ends an answer whose lists and `total` are filled: says whether the rule's limit cut them, and,
/// when they are empty, what was looked for.
inline void finish(PageAnswer& answer, std::string looked_for) {
  answer.total = std::max<std::uint64_t>(answer.total, answer.files.size());
  answer.truncated = answer.total > answer.files.size();
  if (answer.files.empty() && answer.further.empty()) answer.nothing_found = std::move(looked_for);
}

/// What leads to one class of entry points.
struct FlowClass {
  std::string entry_points;        ///< the pattern or the directory that selects the roots
  std::string sign;                ///< what made them a class, in one line
  std::vector<std::string> roots;  ///< ascending
  std::vector<Pick> files;         ///< exactly what the detector returned for the roots
  std::vector<Pick> further;       ///< as for a page
};

/// The answer for the flows page.
struct FlowsAnswer {
  std::vector<FlowClass> classes;  ///< best first
  std::uint64_t total = 0;         ///< classes that were found before the limit
  bool truncated = false;          ///< whether the limit left some of them out
  std::string nothing_found;       ///< what was looked for in vain, when there is no class
};

}  // namespace kestrix
