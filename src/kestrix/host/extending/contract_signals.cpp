#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kImplemented{"implemented", 2.0, "{} file implements its contract",
                              "{} files implement its contracts", "mockito, crates.io"};
constexpr Signal kAsked{"asked_for", 0.8, "{} file asks for its contract",
                        "{} files ask for its contracts", "eShopOnWeb, lazygit"};
constexpr Signal kServes{"asked_for", 0.8, "{} file asks for its contract",
                         "{} files ask for its contracts", "eShopOnWeb, firefly"};
constexpr Signal kExtended{"extended", 0.6, "{} file extends its base type",
                           "{} files extend its base types", "netbox, BookStack"};
constexpr Signal kTried{"implemented_in_tests", 1.2, "{} test implements its contract",
                        "{} tests implement its contracts", "flask, mockito"};
constexpr Signal kForOthers{"for_others", 3.5, "its base type is for others to extend",
                            "its {} base types are for others to extend", "netbox, flask"};

constexpr Signal kSpread{"implemented_in_folders", 1.0, "{} folder more implements it",
                         "{} folders more implement it", "okhttp, jellyfin"};
constexpr Signal kTypes{"implemented_beside", 0.8, "{} type of few files implements its contract",
                        "{} types of few files implement its contract", "flask, lazygit"};
constexpr Signal kLookedUp{"looked_up", 1.0, "{} file hands its contract over as a value",
                           "{} files hand its contracts over as values", "halo, mockito"};

constexpr std::size_t kMostLookedUp = 3;
constexpr std::size_t kMostServed = 8;  // what more ask for is a service
constexpr std::size_t kFewFiles = 2;
constexpr std::size_t kManyTypes = 8;
constexpr double kLoudFactor = 0.35;
constexpr double kDataFactor = 0.4;
constexpr double kLeastCalled = 0.3;
constexpr double kUncalledFactor = 0.6;
constexpr double kInternalFactor = 0.6;

class ContractSignals {
 public:
  ContractSignals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                  ScoreSheet& sheet)
      : evidence_(evidence), contracts_(contracts), sheet_(sheet) {}

  void add_contracts() {
    std::map<FileId, OfFile> by_file;
    for (const Contract& contract : contracts_) {
      OfFile& of = by_file[contract.type.file];
      (contract.open ? of.open : of.plain).push_back(evidence_.place_of(contract.type));
      of.quiet = std::max(of.quiet, contract.quiet);
      of.called = std::max(of.called, contract.called);
      of.data &= contract.data;
      auto& into = contract.open ? of.implementing : of.extending;
      into.insert(contract.files.begin(), contract.files.end());
      if (contract.open) {
        of.folders = std::max(of.folders, contract.folders);
        const std::size_t types = contract.implementers.size();
        if (contract.files.size() <= kFewFiles && types >= kManyTypes) {
          of.types = std::max(of.types, types);
        }
      }
      for (const std::uint32_t at : evidence_.references_to(contract.type)) {
        const IndexedReference& to = evidence_.reference(at);
        if (to.source == contract.type.file) continue;
        const bool product = evidence_.is_product(to.source);
        const bool several = contract.files.size() > 1 || contract.test_implementers > 0;
        if (!kSubtyping.has(to.role) && product && contract.open) {
          (several ? of.asking : of.serving).insert(to.source);
          if (to.role == Role::kLists) of.looking.insert(to.source);
        }
        if (kSubtyping.has(to.role) && evidence_.is_test(to.source)) of.trying.insert(to.source);
      }
    }
    for (const auto& [file, of] : by_file) {
      const std::string open = names_and_lines(of.open);
      sheet_.add(file, kImplemented, of.implementing.size(), of.open, open);
      sheet_.add(file, kAsked, of.asking.size(), of.open, open);
      sheet_.add(file, kServes, std::min(of.serving.size(), kMostServed), of.open, open);
      sheet_.add(file, kSpread, of.folders > 1 ? of.folders - 1 : 0);
      sheet_.add(file, kTypes, of.types, of.open, open);
      if (of.looking.size() <= kMostServed) {
        sheet_.add(file, kLookedUp, std::min(of.looking.size(), kMostLookedUp), of.open, open);
      }
      sheet_.add(file, kExtended, of.extending.size(), of.plain, names_and_lines(of.plain));
      sheet_.add(file, kTried, of.trying.size());
      // What many name is made to be used, whatever it implements.
      sheet_.scale(file, kLoudFactor + (1 - kLoudFactor) * of.quiet);
      if (of.called < kLeastCalled) sheet_.scale(file, kUncalledFactor);
      if (of.data) sheet_.scale(file, kDataFactor);
      if (is_internal(file)) sheet_.scale(file, kInternalFactor);
    }
  }

  // Types that only tests extend, while the product asks of types and values whether they are one.
  void add_bases_for_others() {
    std::map<FileId, std::vector<Place>> found;
    for (const IndexedReference& to : evidence_.index().references()) {
      if (to.role != Role::kExtends || to.declaration == 0 || !evidence_.is_test(to.source))
        continue;
      const DeclarationRef type{to.target, to.declaration - 1};
      if (!evidence_.is_product(to.target) || !evidence_.subtypes(type).empty()) continue;
      const bool asked = !evidence_.files_naming(type, {Role::kCatches, Role::kLists}).empty();
      const bool made = !evidence_.files_naming(type, {Role::kConstructs}).empty();
      if (asked && !made) found[to.target].push_back(evidence_.place_of(type));
    }
    for (auto& [file, places] : found) {
      std::ranges::sort(places, {}, &Place::line);
      places.erase(std::unique(places.begin(), places.end()), places.end());
      const std::string names = names_and_lines(places);
      const std::size_t count = places.size();
      sheet_.add(file, kForOthers, count, std::move(places), names);
    }
  }

 private:
  // By convention packages of that name are for their own product alone. Programs in Go keep
  // everything there.
  bool is_internal(FileId file) const {
    const std::string_view path = evidence_.path(file);
    const bool named = path.starts_with("internal/") || path.find("/internal/") != path.npos;
    return named && evidence_.index().files()[file].language != "go";
  }

  struct OfFile {
    std::set<FileId> implementing, asking, extending, trying;
    std::set<FileId> serving;  // that ask for a contract of one implementer
    std::set<FileId> looking;
    std::size_t folders = 0, types = 0;  // the most of one contract
    double quiet = 0;                    // of the quietest contract
    double called = 0;
    bool data = true;
    std::vector<Place> open, plain;
  };

  const CodeEvidence& evidence_;
  std::span<const Contract> contracts_;
  ScoreSheet& sheet_;
};

}  // namespace

void add_contract_signals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                          ScoreSheet& sheet) {
  ContractSignals signals(evidence, contracts, sheet);
  signals.add_contracts();
  signals.add_bases_for_others();
}

}  // namespace kestrix
