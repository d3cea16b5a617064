#include "capi/answers/names.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "capi/answers/escape.h"
#include "capi/answers/suggestions.h"
#include "kestrix/facts/reference_role.h"
#include "kestrix/host/path_glob.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix {
namespace {

constexpr std::array kKinds{SymbolKind::kClass, SymbolKind::kInterface, SymbolKind::kConstant,
                            SymbolKind::kVariable};

}  // namespace

std::vector<std::string> page_names() {
  std::vector<std::string> names;
  names.reserve(kPages.size());
  for (const Page& page : kPages) names.emplace_back(page.name);
  return names;
}

std::vector<std::string> kind_names() {
  std::vector<std::string> names;
  names.reserve(kKinds.size());
  for (const SymbolKind kind : kKinds) names.emplace_back(to_string(kind));
  return names;
}

std::vector<std::string> role_names() {
  return {index::kRoleNames.begin(), index::kRoleNames.end()};
}

std::vector<const Page*> pages_named(std::span<const std::string> names) {
  std::vector<const Page*> pages;
  for (const Page& page : kPages) {
    if (names.empty() || std::ranges::find(names, page.name) != names.end()) {
      pages.push_back(&page);
    }
  }
  return pages;
}

std::optional<SymbolKind> kind_named(std::string_view name) {
  const auto kind =
      std::ranges::find(kKinds, name, [](SymbolKind each) { return to_string(each); });
  return kind == kKinds.end() ? std::nullopt : std::optional(*kind);
}

std::string name_fault(std::string_view name, std::span<const std::string> names) {
  if (std::ranges::find(names, name) != names.end()) return {};
  return fmt::format("{} is none of {}{}", c_quoted(name), fmt::join(names, ", "),
                     did_you_mean(name, names));
}

std::string path_glob_fault(const std::string& pattern) {
  try {
    const PathGlob glob(pattern);
    return {};
  } catch (const BadGlob& error) {
    return error.what();
  }
}

std::string name_glob_fault(const std::string& pattern) {
  if (index::Wildmatch(pattern).is_valid()) return {};
  return fmt::format("the pattern \"{}\" is malformed", pattern);
}

}  // namespace kestrix
