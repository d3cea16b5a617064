#include "kestrix/host/evidence/error_types.h"

#include <deque>

#include "kestrix/languages/frameworks.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::IndexedReference;
using index::Known;

bool is_value(DeclarationKind kind) {
  return kind == DeclarationKind::kConstant || kind == DeclarationKind::kVariable;
}

class Finder {
 public:
  explicit Finder(const CodeEvidence& evidence) : evidence_(evidence) {}

  std::set<DeclarationRef> find() {
    for (const IndexedReference& to : evidence_.index().references()) {
      if (evidence_.is_product(to.source)) look_at(to);
    }
    for (index::FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (evidence_.is_product(file)) look_for_methods(file);
    }
    while (!open_.empty()) {
      const DeclarationRef type = open_.front();
      open_.pop_front();
      for (const DeclarationRef subtype : evidence_.subtypes(type)) take(subtype);
    }
    return std::move(found_);
  }

 private:
  void look_at(const IndexedReference& to) {
    const std::string_view language = evidence_.index().files()[to.source].language;
    const bool outside = to.target == IndexedReference::kOutside;
    const DeclarationRef holder{to.source, to.within - 1};
    if (outside && to.within > 0) {
      const bool derives = kSubtyping.has(to.role) || to.role == index::Role::kAnnotates;
      if (derives && is_error_base(language, to)) take(holder);
      if (to.role == index::Role::kCalls && is_value(evidence_[holder].kind) &&
          known_as(language, Known::kErrorValue, to.name) != nullptr) {
        take(holder);
      }
    }
    if (outside || to.declaration == 0 || to.role != index::Role::kThrows) return;
    const DeclarationRef thrown{to.target, to.declaration - 1};
    const DeclarationKind kind = evidence_[thrown].kind;
    if (evidence_.is_product(to.target) && (is_type(kind) || is_value(kind))) take(thrown);
  }

  // Types that are errors because of what they can do.
  void look_for_methods(index::FileId file) {
    const std::string_view language = evidence_.index().files()[file].language;
    const auto declared = evidence_.index().declarations(file);
    for (const auto& row : declared) {
      if (row.kind != DeclarationKind::kMethod || row.container == 0 || row.size > 0) continue;
      if (known_as(language, Known::kErrorMethod, row.name) == nullptr) continue;
      if (declared[row.container - 1].kind == DeclarationKind::kInterface) continue;
      take({file, row.container - 1});
    }
  }

  // Libraries call their error types so, and what derives from one is one.
  static bool is_error_base(std::string_view language, const IndexedReference& to) {
    if (known_as(language, Known::kErrorBase, to.name) != nullptr) return true;
    return kSubtyping.has(to.role) &&
           (to.name.ends_with("Error") || to.name.ends_with("Exception"));
  }

  void take(DeclarationRef type) {
    if (found_.insert(type).second) open_.push_back(type);
  }

  const CodeEvidence& evidence_;
  std::set<DeclarationRef> found_;
  std::deque<DeclarationRef> open_;
};

}  // namespace

std::set<DeclarationRef> error_types(const CodeEvidence& evidence) {
  return Finder(evidence).find();
}

}  // namespace kestrix
