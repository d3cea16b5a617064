#include "kestrix/host/flows/naming_graph.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace kestrix {
namespace {

using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr RoleSet kNaming{Role::kConstructs, Role::kCalls, Role::kLists,
                          Role::kString,     Role::kUses,  Role::kAnnotates};

constexpr double kImportAlone = 1;

// To import a file is to run it, so an import whose names nobody uses has a purpose.
bool runs_imports(std::string_view language) {
  static constexpr std::array<std::string_view, 7> kRunning{
      "go", "javascript", "php", "python", "ruby", "tsx", "typescript"};
  return std::ranges::find(kRunning, language) != kRunning.end();
}

}  // namespace

NamingGraph::NamingGraph(const CodeEvidence& evidence) : evidence_(evidence) {
  const auto files = evidence_.index().files();
  first_from_.assign(files.size() + 1, 0);
  for (FileId file = 0; file < files.size(); ++file) {
    const std::size_t first = by_source_.size();
    if (!evidence_.is_test(file)) {
      take_references(file);
      take_imports(file, first);
    }
    first_from_[file + 1] = static_cast<std::uint32_t>(by_source_.size());
  }
  order_by_target();
}

// References come by target and declaration.
void NamingGraph::take_references(FileId file) {
  std::uint32_t last = 0;
  const std::size_t first = by_source_.size();
  for (const IndexedReference& to : evidence_.index().references_from(file)) {
    if (to.target == IndexedReference::kOutside || to.target == file) continue;
    if (by_source_.size() == first || by_source_.back().to != to.target) {
      by_source_.push_back({.from = file, .to = to.target, .line = to.line, .used = true});
      last = 0;
    }
    Naming& naming = by_source_.back();
    naming.line = std::min(naming.line, to.line);
    if (to.declaration != last || naming.declarations == 0) ++naming.declarations;
    last = to.declaration;
    naming.names |= kNaming.has(to.role);
    naming.derives |= kSubtyping.has(to.role);
  }
}

// Those that no reference explains: for side effects, to hand names on, of languages whose
// references nobody reads.
void NamingGraph::take_imports(FileId file, std::size_t first) {
  const std::size_t middle = by_source_.size();
  const bool runs = runs_imports(evidence_.index().files()[file].language);
  for (const auto& edge : evidence_.index().edges_from(file)) {
    const auto begin = by_source_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto end = by_source_.begin() + static_cast<std::ptrdiff_t>(middle);
    const auto known = std::ranges::lower_bound(begin, end, edge.target, {}, &Naming::to);
    if (known != end && known->to == edge.target) continue;
    const bool used = edge.weight > kImportAlone;
    by_source_.push_back(
        {.from = file, .to = edge.target, .declarations = 1, .used = used, .names = used || runs});
  }
  const auto begin = by_source_.begin() + static_cast<std::ptrdiff_t>(first);
  std::inplace_merge(begin, by_source_.begin() + static_cast<std::ptrdiff_t>(middle),
                     by_source_.end(),
                     [](const Naming& a, const Naming& b) { return a.to < b.to; });
}

void NamingGraph::order_by_target() {
  first_to_.assign(first_from_.size(), 0);
  for (const Naming& naming : by_source_) ++first_to_[naming.to + 1];
  std::partial_sum(first_to_.begin(), first_to_.end(), first_to_.begin());
  by_target_.resize(by_source_.size());
  std::vector<std::uint32_t> next(first_to_.begin(), first_to_.end() - 1);
  for (const Naming& naming : by_source_) by_target_[next[naming.to]++] = naming;
}

}  // namespace kestrix
