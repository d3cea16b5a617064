#include "kestrix/host/evidence/code_evidence.h"

#include <algorithm>
#include <numeric>

namespace kestrix {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;

CodeEvidence::CodeEvidence(const WikiGenerator& generator)
    : index_(generator.indexed()), parts_(generator.parts()) {
  const auto files = index_.files();
  for (FileId file = 0; file < files.size(); ++file) product_count_ += is_product(file) ? 1U : 0U;
  order_references();
  product_dependents_.resize(files.size());
  test_dependents_.resize(files.size());
  for (const auto& edge : index_.edges()) {
    if (is_product(edge.source)) ++product_dependents_[edge.target];
    if (is_test(edge.source)) ++test_dependents_[edge.target];
  }
}

// Each file has one slot for itself and one for each declaration.
void CodeEvidence::order_references() {
  const auto files = index_.files();
  slots_.resize(files.size() + 1);
  for (FileId file = 0; file < files.size(); ++file) {
    slots_[file + 1] =
        slots_[file] + 1 + static_cast<std::uint32_t>(index_.declarations(file).size());
  }
  first_.assign(slots_.back() + 1, 0);
  const auto references = index_.references();
  const auto slot_of = [&](const IndexedReference& to) {
    return slots_[to.target] + to.declaration;
  };
  for (const IndexedReference& to : references) {
    if (to.target != IndexedReference::kOutside) ++first_[slot_of(to) + 1];
  }
  std::partial_sum(first_.begin(), first_.end(), first_.begin());
  by_target_.resize(first_.back());
  std::vector<std::uint32_t> next(first_.begin(), first_.end() - 1);
  for (std::uint32_t at = 0; at < references.size(); ++at) {
    if (references[at].target != IndexedReference::kOutside) {
      by_target_[next[slot_of(references[at])]++] = at;
    }
  }
}

Place CodeEvidence::place_of(DeclarationRef at) const {
  return {std::string(path(at.file)), (*this)[at].line, std::string((*this)[at].name)};
}

Place CodeEvidence::place_of(const IndexedReference& reference) const {
  return {std::string(path(reference.source)), reference.line, index_.name_of(reference)};
}

std::span<const std::uint32_t> CodeEvidence::references_to(DeclarationRef at) const {
  const std::uint32_t slot = slots_[at.file] + at.place + 1;
  return std::span(by_target_).subspan(first_[slot], first_[slot + 1] - first_[slot]);
}

std::span<const std::uint32_t> CodeEvidence::references_to(FileId file) const {
  const auto first = first_[slots_[file]];
  return std::span(by_target_).subspan(first, first_[slots_[file + 1]] - first);
}

std::vector<FileId> CodeEvidence::files_naming(DeclarationRef at, RoleSet roles) const {
  std::vector<FileId> files;
  for (const std::uint32_t place : references_to(at)) {
    const IndexedReference& to = reference(place);
    if (to.source != at.file && roles.has(to.role) && is_product(to.source)) {
      files.push_back(to.source);
    }
  }
  std::ranges::sort(files);
  files.erase(std::unique(files.begin(), files.end()), files.end());
  return files;
}

std::vector<DeclarationRef> CodeEvidence::subtypes(DeclarationRef at) const {
  std::vector<DeclarationRef> types;
  for (const std::uint32_t place : references_to(at)) {
    const IndexedReference& to = reference(place);
    if (to.within == 0 || !kSubtyping.has(to.role) || !is_product(to.source)) continue;
    const DeclarationRef type{to.source, to.within - 1};
    if (is_type((*this)[type].kind) && type != at) types.push_back(type);
  }
  std::ranges::sort(types);
  types.erase(std::unique(types.begin(), types.end()), types.end());
  return types;
}

}  // namespace kestrix
