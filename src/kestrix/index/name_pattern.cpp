#include "kestrix/index/name_pattern.h"

#include <algorithm>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

bool same(char in_name, char in_pattern) { return ascii::lower(in_name) == in_pattern; }

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), ascii::lower);
  return result;
}

}  // namespace

NamePattern::NamePattern(std::string_view pattern) {
  std::string text = lowered(pattern);
  auto run = text.find('%');
  first_ = text.substr(0, run);
  exact_ = run == text.npos;
  while (!exact_) {
    const auto next = text.find('%', run + 1);
    if (next == text.npos) break;
    if (next > run + 1) middle_.push_back(text.substr(run + 1, next - run - 1));
    run = next;
  }
  if (!exact_) last_ = text.substr(run + 1);
}

bool NamePattern::matches(std::string_view name) const {
  if (exact_) return std::ranges::equal(name, first_, same);
  if (name.size() < first_.size() + last_.size()) return false;
  const auto end = name.size() - last_.size();
  if (!std::ranges::equal(name.substr(0, first_.size()), first_, same)) return false;
  if (!std::ranges::equal(name.substr(end), last_, same)) return false;
  std::string_view rest = name.substr(first_.size(), end - first_.size());
  for (const std::string& piece : middle_) {
    const auto* const found =
        std::search(rest.begin(), rest.end(), piece.begin(), piece.end(), same);
    if (found == rest.end()) return false;
    rest.remove_prefix(static_cast<std::size_t>(found - rest.begin()) + piece.size());
  }
  return true;
}

}  // namespace kestrix::index
