#include "kestrix/host/errors/error_signals.h"

#include <utility>

#include "kestrix/host/errors/signal_groups.h"
#include "kestrix/host/evidence/error_types.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;

constexpr double kBehind = 0.65;

}  // namespace

bool ErrorView::names_type(const IndexedReference& to) const {
  if (to.target == IndexedReference::kOutside || to.declaration == 0) return false;
  return types.contains({to.target, to.declaration - 1});
}

std::set<DeclarationRef> ErrorView::holders_calling(index::Known known) const {
  std::set<DeclarationRef> holders;
  for (const IndexedReference& to : code.index().references()) {
    if (to.target != IndexedReference::kOutside || to.within == 0) continue;
    if (to.role != index::Role::kCalls && to.role != index::Role::kConstructs) continue;
    if (!code.is_product(to.source)) continue;
    const auto language = code.index().files()[to.source].language;
    if (known_as(language, known, to.name) != nullptr) holders.insert({to.source, to.within - 1});
  }
  return holders;
}

std::vector<Place> ErrorView::places_of(const std::set<DeclarationRef>& declarations) const {
  std::vector<Place> places;
  for (const DeclarationRef at : declarations) places.push_back(code.place_of(at));
  return places;
}

bool is_callable(index::DeclarationKind kind) {
  return kind == index::DeclarationKind::kFunction || kind == index::DeclarationKind::kMethod;
}

ErrorEvidence error_evidence_of(const CodeEvidence& evidence) {
  std::set<DeclarationRef> types = error_types(evidence);
  const ErrorView errors{evidence, types};
  ScoreSheet sheet(evidence);
  add_name_signals(errors, sheet);
  add_definition_signals(errors, sheet);
  ScoreSheet defining_sheet = sheet;
  add_use_signals(errors, sheet);
  add_handler_signals(errors, sheet);
  add_ending_signals(errors, sheet);
  ScoreSheet handling = sheet;
  std::set<FileId> defining;
  for (const DeclarationRef type : types) defining.insert(type.file);
  for (const FileId file : defining) handling.scale(file, kBehind);
  return {std::move(types), std::move(sheet), std::move(defining_sheet), std::move(handling)};
}

}  // namespace kestrix
