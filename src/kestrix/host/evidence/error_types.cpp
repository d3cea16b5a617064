#include "kestrix/host/evidence/error_types.h"

#include <algorithm>
#include <deque>
#include <span>

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

constexpr std::size_t kFewFiles = 5;
constexpr std::size_t kOneOf = 8;

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
      if (row.container == 0 || row.size > 0) continue;
      const DeclarationRef holder{file, row.container - 1};
      if (is_failure(row, declared[row.container - 1])) take({file, place_in(declared, row)});
      if (row.kind != DeclarationKind::kMethod) continue;
      if (declared[row.container - 1].kind == DeclarationKind::kInterface) continue;
      const bool error = known_as(language, Known::kErrorMethod, row.name) != nullptr;
      const bool status = known_as(language, Known::kStatusMethod, row.name) != nullptr;
      if (error || (status && is_everywhere(holder))) take(holder);
    }
  }

  // "Error" with what went wrong, of a type whose other values are none.
  static bool is_failure(const index::DeclarationView& row, const index::DeclarationView& holder) {
    if (!is_type(row.kind) || row.fields == 0 || !is_type(holder.kind)) return false;
    const auto bases = row.bases();
    const auto extends = [&holder](std::string_view base) { return base.starts_with(holder.name); };
    return (row.name == "Error" || row.name == "Failure") && std::ranges::any_of(bases, extends);
  }

  static std::uint32_t place_in(std::span<const index::DeclarationView> all,
                                const index::DeclarationView& row) {
    return static_cast<std::uint32_t>(&row - all.data());
  }

  // Whether much of the product has it in the position of a type, as what functions return.
  bool is_everywhere(DeclarationRef type) const {
    const auto naming = evidence_.files_naming(type, {index::Role::kType});
    return naming.size() >= std::max(kFewFiles, evidence_.product_count() / kOneOf);
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
