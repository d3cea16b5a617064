#include "kestrix/host/evidence/typed_values.h"

#include <algorithm>

namespace kestrix {

using index::DeclarationKind;
using index::DeclarationRef;

std::optional<DeclarationRef> value_of_type(const CodeEvidence& evidence,
                                            const index::IndexedReference& to) {
  const auto declared = evidence.index().declarations(to.source);
  auto place = to.within;
  if (place == 0) {
    const auto at = std::ranges::lower_bound(declared, to.line, {}, &index::DeclarationView::line);
    if (at == declared.end() || at->line != to.line) return std::nullopt;
    place = static_cast<std::uint32_t>(at - declared.begin()) + 1;
  }
  const auto& holder = declared[place - 1];
  const bool value =
      holder.kind == DeclarationKind::kConstant || holder.kind == DeclarationKind::kVariable;
  if (!value || holder.container != 0) return std::nullopt;
  return DeclarationRef{to.source, place - 1};
}

}  // namespace kestrix
