#include "kestrix/host/extending/contracts.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "kestrix/host/evidence/descendants.h"
#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/evidence/overriding.h"
#include "kestrix/host/extending/chance.h"
#include "kestrix/host/extending/unnamed_contracts.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::folder_of;
using index::IndexedReference;

constexpr std::size_t kAskedFor = 3;   // so many files name a contract that one type implements
constexpr std::size_t kPlainBase = 3;  // so many files extend a type that is no open one
constexpr std::size_t kPlainFolders = 2;
constexpr std::size_t kFamily = 8;     // so many make a family of a base wherever they lie
constexpr std::size_t kManyTypes = 5;  // so many types implement a contract beside it
constexpr double kMostCalled = 0.6;
constexpr std::size_t kMostDependents = 3;  // what more name serves them

bool is_interface(DeclarationKind kind) {
  return kind == DeclarationKind::kInterface || kind == DeclarationKind::kTrait ||
         kind == DeclarationKind::kProtocol;
}

class Finder {
 public:
  explicit Finder(const CodeEvidence& evidence)
      : evidence_(evidence),
        errors_(error_types(evidence)),
        descendants_(evidence),
        unnamed_(evidence),
        chance_(evidence) {}

  std::vector<Contract> find() {
    std::set<DeclarationRef> bases = unnamed_.types();
    for (const IndexedReference& to : evidence_.index().references()) {
      if (to.declaration == 0 || to.target == IndexedReference::kOutside) continue;
      if (kSubtyping.has(to.role) && evidence_.is_product(to.target)) {
        bases.insert({to.target, to.declaration - 1});
      }
    }
    std::vector<Contract> contracts;
    for (const DeclarationRef type : bases) {
      if (!is_type(evidence_[type].kind) || errors_.contains(type)) continue;
      Contract contract = look_at(type);
      if (counts(contract)) contracts.push_back(std::move(contract));
    }
    return contracts;
  }

 private:
  std::string_view language_of(DeclarationRef type) const {
    return evidence_.index().files()[type.file].language;
  }

  Contract look_at(DeclarationRef type) {
    Contract contract{.type = type, .implementers = {}, .files = {}};
    const auto& declared = evidence_[type];
    // An interface may be made of others alone; a class says by what it leaves open that it is one.
    const bool members = declared.methods + declared.fields > 0 || !declared.bases().empty();
    // What a mixin leaves open, it asks of what it is mixed into, for its own members.
    const bool mixin = declared.kind == DeclarationKind::kTrait && language_of(type) == "php";
    contract.open = (declared.abstract_methods > 0 && !mixin) ||
                    derives_from(type, index::Known::kOpenBase) ||
                    (members && declared.kind == DeclarationKind::kInterface);
    contract.implementers = descendants_.of(type);
    if (contract.implementers.empty()) contract.implementers = unnamed_.implementers(type);
    chance_.leave_out(type, contract.implementers);
    std::set<std::string_view> folders;
    for (const DeclarationRef implementer : contract.implementers) {
      if (implementer.file == type.file || is_shape_of_data(implementer)) continue;
      if (!contract.files.empty() && contract.files.back() == implementer.file) continue;
      contract.files.push_back(implementer.file);
      folders.insert(folder_of(evidence_.path(implementer.file)));
    }
    contract.folders = folders.size();
    const auto quiet = std::ranges::count_if(contract.files, [this](FileId file) {
      return evidence_.product_dependents(file) <= kMostDependents;
    });
    contract.quiet = contract.files.empty()
                         ? 1
                         : static_cast<double>(quiet) / static_cast<double>(contract.files.size());
    contract.called = contract.open ? 1 : overriding_share(evidence_, type, contract.files);
    // An abstract type may leave members open that do nothing by themselves.
    contract.open |= declared.is_abstract && contract.called >= kMostCalled &&
                     !derives_from(type, index::Known::kHandlerBase);
    // Languages without a word for it leave a member open by giving it a body that nobody wants.
    contract.open |= !mixin && filling_share(evidence_, type, contract.files) >= kMostCalled &&
                     contract.quiet >= kMostCalled && contract.files.size() >= kPlainBase &&
                     !derives_from(type, index::Known::kHandlerBase);
    contract.data = declared.methods == 0 && declared.bases().empty();
    std::set<FileId> users;
    std::set<FileId> tests;
    std::set<FileId> lookups;
    for (const std::uint32_t at : evidence_.references_to(type)) {
      const IndexedReference& to = evidence_.reference(at);
      if (to.source == type.file) continue;
      if (kSubtyping.has(to.role)) {
        if (!evidence_.is_product(to.source)) tests.insert(to.source);
      } else if (evidence_.is_product(to.source)) {
        users.insert(to.source);
        if (to.role == index::Role::kLists) lookups.insert(to.source);
      }
    }
    for (const DeclarationRef implementer : contract.implementers) {
      if (implementer.file != type.file) continue;
      for (const std::uint32_t at : evidence_.references_to(implementer)) {
        const IndexedReference& to = evidence_.reference(at);
        if (kSubtyping.has(to.role) && evidence_.is_test(to.source)) tests.insert(to.source);
      }
    }
    contract.users = users.size();
    contract.test_implementers = tests.size();
    contract.lookups = lookups.size();
    return contract;
  }

  // Interfaces of TypeScript that extend others mostly say what more some value has.
  bool is_shape_of_data(DeclarationRef type) const {
    const std::string_view language = language_of(type);
    return is_interface(evidence_[type].kind) && (language == "typescript" || language == "tsx");
  }

  bool counts(const Contract& contract) const {
    const auto& declared = evidence_[contract.type];
    // What only its own package can name is for nobody else to implement; where types satisfy
    // interfaces without naming them, not even where others do.
    const bool coincides = language_of(contract.type) == "go" && is_interface(declared.kind);
    const bool family = contract.files.size() >= kFamily || contract.implementers.size() >= kFamily;
    if (!declared.exported && (coincides || (contract.folders < kPlainFolders && !family))) {
      return false;
    }
    if (contract.open) {
      if (contract.files.size() >= 2) return true;
      if (contract.implementers.size() >= kManyTypes && declared.methods > 0) return true;
      if (contract.lookups > 0 && !contract.files.empty()) return true;
      const bool tried = contract.test_implementers > 0 || contract.users >= 2;
      const bool mixin = declared.kind == DeclarationKind::kTrait && declared.abstract_methods == 0;
      if (contract.test_implementers >= 2 && contract.users >= 2 && !mixin) return true;
      return (tried && !contract.implementers.empty()) ||
             (contract.files.size() == 1 && contract.users >= kAskedFor &&
              folder_of(evidence_.path(contract.files.front())) !=
                  folder_of(evidence_.path(contract.type.file)));
    }
    if (is_interface(declared.kind)) return false;
    const bool meant = contract.quiet >= kMostCalled || declared.is_abstract;
    if (contract.files.size() >= kFamily && meant) return true;
    const bool elsewhere = contract.folders >= kPlainFolders || leaves(contract);
    return contract.files.size() >= kPlainBase && elsewhere &&
           !derives_from(contract.type, index::Known::kHandlerBase);
  }

  // Whether what extends it has a folder of its own.
  bool leaves(const Contract& contract) const {
    return !contract.files.empty() && folder_of(evidence_.path(contract.files.front())) !=
                                          folder_of(evidence_.path(contract.type.file));
  }

  bool derives_from(DeclarationRef type, index::Known known) const {
    const std::string_view language = language_of(type);
    return std::ranges::any_of(evidence_.index().references_from(type.file),
                               [&](const IndexedReference& to) {
                                 return to.within == type.place + 1 && kSubtyping.has(to.role) &&
                                        to.target == IndexedReference::kOutside &&
                                        index::known_as(language, known, to.name) != nullptr;
                               });
  }

  const CodeEvidence& evidence_;
  const std::set<DeclarationRef> errors_;
  Descendants descendants_;
  const UnnamedContracts unnamed_;
  const Chance chance_;
};

double grown(std::size_t count) { return std::log2(1.0 + static_cast<double>(count)); }

}  // namespace

std::vector<Contract> contracts_of(const CodeEvidence& evidence) { return Finder(evidence).find(); }

double weight_of(const Contract& contract) {
  const double sum = 2 * grown(contract.files.size()) + grown(contract.folders) +
                     grown(contract.users) + grown(contract.test_implementers) / 2;
  return contract.open ? sum : sum / 2;
}

}  // namespace kestrix
