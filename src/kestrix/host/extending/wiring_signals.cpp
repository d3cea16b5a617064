#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::FileId;
using index::folder_of;
using index::IndexedReference;
using index::Role;

constexpr Signal kWires{"wires_files", 1.4, "few others name {} file that it names",
                        "few others name {} files of one kind that it names", "cli, crates.io"};

constexpr RoleSet kWiring{Role::kConstructs, Role::kCalls, Role::kLists, Role::kString};
constexpr std::size_t kLeastWired = 6;
constexpr std::uint32_t kMostNamers = 2;

}  // namespace

void add_wiring_signals(const CodeEvidence& evidence, ScoreSheet& sheet) {
  // More than one part of a product wires its own; the one that wires the most wires the product.
  std::pair<std::size_t, FileId> best{0, 0};
  for (FileId file = 0; file < evidence.index().files().size(); ++file) {
    if (!evidence.is_product(file)) continue;
    const std::string_view own = folder_of(evidence.path(file));
    std::set<FileId> wired;
    for (const IndexedReference& to : evidence.index().references_from(file)) {
      if (to.target == IndexedReference::kOutside || to.target == file) continue;
      if (!kWiring.has(to.role) || !evidence.is_product(to.target)) continue;
      if (evidence.product_dependents(to.target) > kMostNamers) continue;
      if (folder_of(evidence.path(to.target)) != own) wired.insert(to.target);
    }
    // Alike are files of one folder, and files of sibling folders.
    std::map<std::string_view, std::size_t> alike;
    for (const FileId target : wired) {
      const std::string_view folder = folder_of(evidence.path(target));
      ++alike[folder];
      if (!folder.empty() && folder_of(folder) != folder) ++alike[folder_of(folder)];
    }
    std::size_t most = 0;
    for (const auto& [folder, count] : alike) most = std::max(most, count);
    if (most > best.first) best = {most, file};
  }
  if (best.first >= kLeastWired) sheet.add(best.second, kWires, best.first);
}

}  // namespace kestrix
