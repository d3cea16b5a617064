#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;

constexpr Signal kContext{"given_to_implementers", 1.0, "{} file that implements a contract has it",
                          "nearly all files that implement a contract have it, {} of them",
                          "crates.io, caddy"};

constexpr std::size_t kLeastFiles = 6;
constexpr double kNearlyAll = 0.8;
constexpr double kHardlyOthers = 0.75;
constexpr std::size_t kMostLookedAt = 3'000'000;  // files may implement any number of contracts

using Types = std::map<DeclarationRef, std::size_t>;

// The types that the files of a contract name as such, with how many do.
Types types_of(const CodeEvidence& evidence, const Contract& contract, std::size_t& looked_at) {
  Types types;
  for (const FileId file : contract.files) {
    std::set<DeclarationRef> named;
    const auto references = evidence.index().references_from(file);
    looked_at += references.size();
    if (looked_at > kMostLookedAt) return {};
    for (const IndexedReference& to : references) {
      if (to.role != index::Role::kType || to.target == IndexedReference::kOutside) continue;
      if (to.declaration == 0 || to.target == file || !evidence.is_product(to.target)) continue;
      const DeclarationRef type{to.target, to.declaration - 1};
      if (type != contract.type && is_type(evidence[type].kind)) named.insert(type);
    }
    for (const DeclarationRef type : named) ++types[type];
  }
  return types;
}

}  // namespace

void add_context_signals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                         ScoreSheet& sheet) {
  std::map<FileId, std::pair<std::size_t, DeclarationRef>> most;
  std::size_t looked_at = 0;
  for (const Contract& contract : contracts) {
    if (!contract.open || contract.files.size() < kLeastFiles) continue;
    const auto all = static_cast<double>(contract.files.size());
    for (const auto& [type, count] : types_of(evidence, contract, looked_at)) {
      const auto having = static_cast<double>(count);
      if (having < kNearlyAll * all) continue;
      const auto naming = evidence.files_naming(type, {index::Role::kType});
      if (having < kHardlyOthers * static_cast<double>(naming.size())) continue;
      auto& best = most[type.file];
      if (count > best.first) best = {count, type};
    }
  }
  for (const auto& [file, best] : most) {
    std::vector<Place> places{evidence.place_of(best.second)};
    const std::string names = names_and_lines(places);
    sheet.add(file, kContext, best.first, std::move(places), names);
  }
}

}  // namespace kestrix
