#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kGathers{"gathers_implementers", 2.0, "names {} file that implements a contract",
                          "names {} files that implement a contract", "polar, firefly"};
constexpr Signal kPairs{"pairs_contracts", 2.2, "pairs {} contract with an implementation",
                        "pairs {} contracts with their implementations", "eShopOnWeb, okhttp"};
constexpr Signal kTakes{"takes_contracts", 1.5, "has {} contract for a field",
                        "has {} contracts for fields", "okhttp, leveldb"};

constexpr RoleSet kNaming{Role::kConstructs, Role::kCalls, Role::kLists, Role::kString,
                          Role::kType};
constexpr Signal kLooksUp{"looks_contracts_up", 1.5, "hands over {} contract as a value",
                          "hands over {} contracts as values", "eShopOnWeb, mockito"};

constexpr std::size_t kSeveral = 3;
constexpr std::size_t kMany = 9;
constexpr double kLeastQuiet = 0.3;  // the others are named for what they are
constexpr std::size_t kLookups = 2;

class HolderSignals {
 public:
  HolderSignals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                ScoreSheet& sheet)
      : evidence_(evidence), contracts_(contracts), sheet_(sheet) {}

  // Who names most of the files that implement one contract and are hardly named otherwise.
  void add_gatherers() {
    std::map<FileId, std::set<FileId>> gathered;
    for (const Contract& contract : contracts_) {
      if (!contract.open || contract.files.size() < kSeveral || contract.quiet < kLeastQuiet)
        continue;
      for (auto& [file, named] : namers_of(contract)) {
        const bool most = named.size() * 2 >= contract.files.size();
        const bool many = named.size() >= kMany && named.size() * 3 >= contract.files.size();
        if (named.size() >= kSeveral && (most || many)) {
          gathered[file].insert(named.begin(), named.end());
        }
      }
    }
    for (const auto& [file, named] : gathered) sheet_.add(file, kGathers, named.size());
  }

  // One pass over what each file names, line by line.
  void add_holders() {
    for (const Contract& contract : contracts_) {
      if (!contract.open) continue;
      types_.insert(contract.type);
      if (contract.files.size() > 1 || contract.test_implementers > 0)
        several_.insert(contract.type);
      for (const DeclarationRef type : contract.implementers)
        implements_[type].insert(contract.type);
    }
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (evidence_.is_product(file)) look_at(file);
    }
  }

 private:
  std::map<FileId, std::set<FileId>> namers_of(const Contract& contract) const {
    std::map<FileId, std::set<FileId>> namers;
    for (const DeclarationRef type : contract.implementers) {
      if (type.file == contract.type.file) continue;
      for (const DeclarationRef named : makers_of(type)) {
        for (const std::uint32_t at : evidence_.references_to(named)) {
          note(evidence_.reference(at), type.file, namers);
        }
      }
      if (!is_type(evidence_[type].kind)) continue;  // of a value its file says little
      for (const std::uint32_t at : evidence_.references_to(type.file)) {
        note(evidence_.reference(at), type.file, namers);
      }
    }
    return namers;
  }

  // The type and the functions of its file that make one.
  std::vector<DeclarationRef> makers_of(DeclarationRef type) const {
    std::vector<DeclarationRef> makers{type};
    for (const std::uint32_t at : evidence_.references_to(type)) {
      const IndexedReference& to = evidence_.reference(at);
      if (to.source == type.file && to.role == Role::kConstructs && to.within > 0) {
        makers.push_back({to.source, to.within - 1});
      }
    }
    return makers;
  }

  void note(const IndexedReference& to, FileId file,
            std::map<FileId, std::set<FileId>>& namers) const {
    if (to.source == file || !kNaming.has(to.role) || !evidence_.is_product(to.source)) return;
    namers[to.source].insert(file);
  }

  void look_at(FileId file) {
    std::map<std::uint32_t, std::vector<const IndexedReference*>> lines;
    std::set<DeclarationRef> taken;
    std::set<DeclarationRef> looked_up;
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.target == IndexedReference::kOutside || to.target == file || to.declaration == 0) {
        continue;
      }
      const DeclarationRef type{to.target, to.declaration - 1};
      if (types_.contains(type) || implements_.contains(type)) lines[to.line].push_back(&to);
      if (to.role == Role::kLists && types_.contains(type)) looked_up.insert(type);
      if (to.role == Role::kType && to.within > 0 && several_.contains(type) && holds(to)) {
        taken.insert(type);
      }
    }
    if (taken.size() >= kSeveral) sheet_.add(file, kTakes, taken.size());
    if (looked_up.size() >= kLookups) sheet_.add(file, kLooksUp, looked_up.size());
    std::set<DeclarationRef> paired;
    std::vector<Place> places;
    for (const auto& [line, references] : lines) add_pairs(references, paired, places);
    const std::string names = names_and_lines(places);
    sheet_.add(file, kPairs, paired.size(), std::move(places), names);
  }

  bool holds(const IndexedReference& to) const {
    const auto& holder = evidence_[DeclarationRef{to.source, to.within - 1}];
    return holder.kind == DeclarationKind::kField || index::is_type(holder.kind);
  }

  // A contract and what implements it, on one line.
  void add_pairs(const std::vector<const IndexedReference*>& references,
                 std::set<DeclarationRef>& paired, std::vector<Place>& places) const {
    std::set<DeclarationRef> contracts;
    for (const IndexedReference* to : references) {
      const DeclarationRef type{to->target, to->declaration - 1};
      if (types_.contains(type)) contracts.insert(type);
    }
    if (contracts.empty()) return;
    for (const IndexedReference* to : references) {
      if (kSubtyping.has(to->role)) continue;
      const auto found = implements_.find(DeclarationRef{to->target, to->declaration - 1});
      if (found == implements_.end()) continue;
      for (const DeclarationRef contract : contracts) {
        if (found->second.contains(contract) && paired.insert(contract).second) {
          places.push_back(evidence_.place_of(*to));
        }
      }
    }
  }

  const CodeEvidence& evidence_;
  std::span<const Contract> contracts_;
  ScoreSheet& sheet_;
  std::set<DeclarationRef> types_;
  std::map<DeclarationRef, std::set<DeclarationRef>> implements_;
  std::set<DeclarationRef> several_;  // contracts of more than one implementer
};

}  // namespace

void add_holder_signals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                        ScoreSheet& sheet) {
  HolderSignals signals(evidence, contracts, sheet);
  signals.add_gatherers();
  signals.add_holders();
}

}  // namespace kestrix
