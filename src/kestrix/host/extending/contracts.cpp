#include "kestrix/host/extending/contracts.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "kestrix/host/evidence/descendants.h"
#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/evidence/overriding.h"
#include "kestrix/host/evidence/typed_values.h"
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
constexpr std::size_t kFamily = 8;        // so many make a family of a base wherever they lie
constexpr std::size_t kManyTypes = 5;     // so many types implement a contract beside it
constexpr std::uint32_t kPointers = 2;    // to functions
constexpr std::size_t kShapeMethods = 2;  // types have one in common by accident
constexpr std::size_t kMostShapeMethods = 40;
constexpr std::size_t kMostOfShape = 200;
constexpr double kMostCalled = 0.6;
constexpr std::size_t kMostDependents = 3;  // what more name serves them

bool is_interface(DeclarationKind kind) {
  return kind == DeclarationKind::kInterface || kind == DeclarationKind::kTrait ||
         kind == DeclarationKind::kProtocol;
}

class Finder {
 public:
  explicit Finder(const CodeEvidence& evidence)
      : evidence_(evidence), errors_(error_types(evidence)), descendants_(evidence) {}

  std::vector<Contract> find() {
    std::set<DeclarationRef> bases;
    for (const IndexedReference& to : evidence_.index().references()) {
      if (!kSubtyping.has(to.role)) continue;
      if (to.target == IndexedReference::kOutside) {
        const bool shape = to.within > 0 && evidence_.is_product(to.source) && is_shape(to);
        if (shape) shapes_.insert({to.source, to.within - 1});
      } else if (to.declaration > 0 && evidence_.is_product(to.target)) {
        bases.insert({to.target, to.declaration - 1});
      }
    }
    bases.insert(shapes_.begin(), shapes_.end());
    add_tables_of_functions(bases);
    collect_methods_of_shapes();
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
    if (contract.implementers.empty() && shapes_.contains(type)) {
      contract.implementers = shaped_like(type);
    }
    if (is_table_of_functions(type)) {
      const auto filled = values_of(type);
      contract.implementers.insert(contract.implementers.end(), filled.begin(), filled.end());
      std::ranges::sort(contract.implementers);
    }
    std::set<std::string_view> folders;
    for (const DeclarationRef implementer : contract.implementers) {
      if (implementer.file == type.file) continue;
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

  // In C what one implements is a struct of pointers to functions.
  bool is_table_of_functions(DeclarationRef type) const {
    const std::string_view language = language_of(type);
    const auto& row = evidence_[type];
    return (language == "c" || language == "cpp") && row.kind == DeclarationKind::kStruct &&
           row.abstract_methods >= kPointers && row.methods == 0;
  }

  void add_tables_of_functions(std::set<DeclarationRef>& bases) const {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file)) continue;
      const auto rows = evidence_.index().declarations(file).size();
      for (std::uint32_t at = 0; at < rows; ++at) {
        if (is_table_of_functions({file, at})) bases.insert({file, at});
      }
    }
  }

  // The values of a type, at the top of files, that hold something from the start.
  std::set<DeclarationRef> values_of(DeclarationRef type) const {
    std::set<DeclarationRef> values;
    for (const std::uint32_t at : evidence_.references_to(type)) {
      const IndexedReference& to = evidence_.reference(at);
      if (to.role != index::Role::kType || !evidence_.is_product(to.source)) continue;
      const auto value = value_of_type(evidence_, to);
      if (!value) continue;
      // It may be announced before.
      const auto rows = evidence_.index().declarations(to.source);
      for (std::uint32_t place = value->place; place < rows.size(); ++place) {
        if (rows[place].name != evidence_[*value].name || rows[place].container != 0) continue;
        if (rows[place].shape == index::ValueShape::kUnknown) continue;
        values.insert({to.source, place});
        break;
      }
    }
    return values;
  }

  // What derives from it names the methods that it takes, and types that have them need not name
  // it.
  bool is_shape(const IndexedReference& to) const {
    return evidence_.index().files()[to.source].language == "python" &&
           (to.name == "Protocol" || to.name.ends_with(".Protocol"));
  }

  std::vector<std::string_view> methods_of(DeclarationRef type) const {
    std::vector<std::string_view> methods;
    for (const auto& row : evidence_.index().declarations(type.file)) {
      const bool own = row.kind == DeclarationKind::kMethod && row.container == type.place + 1;
      if (own && !row.name.starts_with("__")) methods.push_back(row.name);
    }
    return methods;
  }

  // Who has a method that a shape asks for, too; of those that many have, the first.
  void collect_methods_of_shapes() {
    for (const DeclarationRef shape : shapes_) {
      for (const std::string_view method : methods_of(shape)) having_.try_emplace(method);
    }
    const auto files = evidence_.index().files();
    for (FileId file = 0; file < files.size() && !having_.empty(); ++file) {
      if (files[file].language != "python" || !evidence_.is_product(file)) continue;
      const auto rows = evidence_.index().declarations(file);
      for (const auto& row : rows) {
        if (row.kind != DeclarationKind::kMethod || row.container == 0) continue;
        const DeclarationRef type{file, row.container - 1};
        const auto found = having_.find(row.name);
        if (found == having_.end() || !is_type(rows[type.place].kind)) continue;
        if (!shapes_.contains(type) && found->second.size() < kMostOfShape) {
          found->second.push_back(type);
        }
      }
    }
  }

  // The product's types that have all of its methods, if those are several.
  std::vector<DeclarationRef> shaped_like(DeclarationRef type) const {
    const auto methods = methods_of(type);
    if (methods.size() < kShapeMethods || methods.size() > kMostShapeMethods) return {};
    const auto holders = [this](std::string_view method) -> const auto& {
      return having_.find(method)->second;
    };
    const auto rarest = std::ranges::min(
        methods, {}, [&](std::string_view method) { return holders(method).size(); });
    const auto& table = evidence_.index().declarations();
    std::set<DeclarationRef> types;
    for (const DeclarationRef other : holders(rarest)) {
      const auto has = [&](std::string_view method) {
        return table.find_member(other, method).has_value();
      };
      if (std::ranges::all_of(methods, has)) types.insert(other);
    }
    return {types.begin(), types.end()};
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
  std::set<DeclarationRef> shapes_;
  std::map<std::string_view, std::vector<DeclarationRef>> having_;  // by method
  Descendants descendants_;
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
