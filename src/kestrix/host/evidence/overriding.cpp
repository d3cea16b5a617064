#include "kestrix/host/evidence/overriding.h"

#include <algorithm>
#include <map>
#include <set>

namespace kestrix {

using index::DeclarationKind;

namespace {

// A head and a line that says that it is not done, or nothing.
constexpr std::uint32_t kLongestOpen = 3;

}  // namespace

bool is_constructor(std::string_view method, std::string_view type) {
  return method == type || method == "__init__" || method == "__construct" ||
         method == "constructor" || method == "initialize" || method == "init";
}

double overriding_share(const CodeEvidence& evidence, index::DeclarationRef base,
                        std::span<const index::FileId> files) {
  std::set<std::string_view> members;
  for (const auto& row : evidence.index().declarations(base.file)) {
    const bool own = row.kind == DeclarationKind::kMethod && row.container == base.place + 1;
    if (own && !is_constructor(row.name, evidence[base].name)) members.insert(row.name);
  }
  if (members.empty() || files.empty()) return 0;
  const auto overriding = std::ranges::count_if(files, [&](index::FileId file) {
    return std::ranges::any_of(evidence.index().declarations(file), [&](const auto& row) {
      return row.kind == DeclarationKind::kMethod && members.contains(row.name);
    });
  });
  return static_cast<double>(overriding) / static_cast<double>(files.size());
}

double filling_share(const CodeEvidence& evidence, index::DeclarationRef base,
                     std::span<const index::FileId> files) {
  if (files.empty()) return 0;
  std::map<std::string_view, std::size_t> filled;
  for (const auto& row : evidence.index().declarations(base.file)) {
    const bool own = row.kind == DeclarationKind::kMethod && row.container == base.place + 1;
    const bool open = row.last_line <= row.line + kLongestOpen;
    if (own && open && !is_constructor(row.name, evidence[base].name)) filled.emplace(row.name, 0);
  }
  std::size_t most = 0;
  for (const index::FileId file : files) {
    std::set<std::string_view> own;
    for (const auto& row : evidence.index().declarations(file)) {
      if (row.kind == DeclarationKind::kMethod && filled.contains(row.name)) own.insert(row.name);
    }
    for (const std::string_view name : own) most = std::max(most, ++filled[name]);
  }
  return static_cast<double>(most) / static_cast<double>(files.size());
}

}  // namespace kestrix
