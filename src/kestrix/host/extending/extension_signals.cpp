#include "kestrix/host/extending/extension_signals.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "kestrix/host/index_evidence.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kImplemented{"implemented", 2.0, "{} file implements its contract",
                              "{} files implement its contracts", "mockito, crates.io"};
constexpr Signal kAsked{"asked_for", 1.0, "{} file asks for its contract",
                        "{} files ask for its contracts", "eShopOnWeb, lazygit"};
constexpr Signal kServes{"asked_for", 0.6, "{} file asks for its contract",
                         "{} files ask for its contracts", "eShopOnWeb, firefly"};
constexpr Signal kExtended{"extended", 0.6, "{} file extends its base type",
                           "{} files extend its base types", "netbox, BookStack"};
constexpr Signal kTried{"implemented_in_tests", 1.2, "{} test implements its contract",
                        "{} tests implement its contracts", "flask, mockito"};
constexpr Signal kForOthers{"for_others", 2.4, "its base type is for others to extend",
                            "its {} base types are for others to extend", "netbox, flask"};
constexpr Signal kGathers{"gathers_implementers", 1.8, "names {} file that implements a contract",
                          "names {} files that implement a contract", "crates.io, lazygit"};
constexpr Signal kPairs{"pairs_contracts", 2.2, "pairs {} contract with an implementation",
                        "pairs {} contracts with their implementations", "eShopOnWeb, mockito"};
constexpr Signal kRegisters{
    "registers", 1.6, "{} file hands over what it declares to its functions",
    "{} files hand over what they declare to its functions", "netbox, flask"};
constexpr Signal kTable{"table_of_declarations", 1.3, "its table lists what {} file declares",
                        "its tables list what {} files declare", "umami, BookStack"};
constexpr Signal kLoads{"loads_by_name", 2.6, "loads code by name", "loads code by name, {} times",
                        "flask, netbox"};

constexpr Signal kTakes{"takes_contracts", 1.5, "has {} contract for a field",
                        "has {} contracts for fields", "leveldb, okhttp"};
constexpr Signal kFilled{"filled_in_tables", 1.4, "{} file fills a table of its type",
                         "{} files fill tables of its types", "tmux, redis"};

constexpr RoleSet kNaming{Role::kConstructs, Role::kCalls, Role::kLists, Role::kString,
                          Role::kType};
constexpr std::size_t kSeveral = 3;
constexpr double kLoudFactor = 0.35;
constexpr double kDataFactor = 0.4;
constexpr double kLeastCalled = 0.3;
constexpr double kUncalledFactor = 0.6;
constexpr double kSideFactor = 0.4;

class Signals {
 public:
  Signals(const CodeEvidence& evidence, std::span<const Contract> contracts)
      : evidence_(evidence), contracts_(contracts), sheet_(evidence) {}

  ScoreSheet sheet() {
    add_contracts();
    add_bases_for_others();
    add_gatherers();
    add_references();
    scale_sides();
    return std::move(sheet_);
  }

 private:
  struct OfFile {
    std::set<FileId> implementing, asking, extending, trying;
    std::set<FileId> serving;  // that ask for a contract of one implementer
    double quiet = 0;          // of the quietest contract
    double called = 0;
    bool data = true;
    std::vector<Place> open, plain;
  };

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
      for (const std::uint32_t at : evidence_.references_to(contract.type)) {
        const IndexedReference& to = evidence_.reference(at);
        if (to.source == contract.type.file) continue;
        const bool product = evidence_.is_product(to.source);
        const bool several = contract.files.size() > 1 || contract.test_implementers > 0;
        if (!kSubtyping.has(to.role) && product && contract.open) {
          (several ? of.asking : of.serving).insert(to.source);
        }
        if (kSubtyping.has(to.role) && evidence_.is_test(to.source)) of.trying.insert(to.source);
      }
    }
    for (const auto& [file, of] : by_file) {
      const std::string open = names_and_lines(of.open);
      sheet_.add(file, kImplemented, of.implementing.size(), of.open, open);
      sheet_.add(file, kAsked, of.asking.size(), of.open, open);
      sheet_.add(file, kServes, of.serving.size(), of.open, open);
      sheet_.add(file, kExtended, of.extending.size(), of.plain, names_and_lines(of.plain));
      sheet_.add(file, kTried, of.trying.size());
      // What many name is made to be used, whatever it implements.
      sheet_.scale(file, kLoudFactor + (1 - kLoudFactor) * of.quiet);
      if (of.called < kLeastCalled) sheet_.scale(file, kUncalledFactor);
      if (of.data) sheet_.scale(file, kDataFactor);
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

  // A product is extended in the language that it is written in; what others hold beside it is a
  // part of its surroundings.
  void scale_sides() {
    const auto files = evidence_.index().files();
    std::map<const index::FrameworkName*, std::size_t> counts;  // by table: of related languages
    const auto group_of = [&](FileId file) {
      return index::framework_names(files[file].language).data();
    };
    for (FileId file = 0; file < files.size(); ++file) {
      if (evidence_.is_product(file)) ++counts[group_of(file)];
    }
    counts.erase(nullptr);
    std::size_t most = 0;
    for (const auto& [group, count] : counts) most = std::max(most, count);
    for (const auto& scored : sheet_.ranked()) {
      if (counts[group_of(scored.file)] * 2 < most) sheet_.scale(scored.file, kSideFactor);
    }
  }

  // Who names most of the files that implement one contract.
  void add_gatherers() {
    std::map<FileId, std::set<FileId>> gathered;
    for (const Contract& contract : contracts_) {
      if (!contract.open || contract.files.size() < kSeveral) continue;
      for (auto& [file, named] : namers_of(contract)) {
        const bool most = named.size() * 2 >= contract.files.size();
        if (named.size() >= kSeveral && (most || named.size() >= 3 * kSeveral)) {
          gathered[file].insert(named.begin(), named.end());
        }
      }
    }
    for (const auto& [file, named] : gathered) sheet_.add(file, kGathers, named.size());
  }

  std::map<FileId, std::set<FileId>> namers_of(const Contract& contract) const {
    std::map<FileId, std::set<FileId>> namers;
    for (const DeclarationRef type : contract.implementers) {
      if (type.file == contract.type.file) continue;
      for (const DeclarationRef named : makers_of(type)) {
        for (const std::uint32_t at : evidence_.references_to(named)) {
          note(evidence_.reference(at), type.file, namers);
        }
      }
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

  // One pass over what each file names, line by line.
  void add_references() {
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
    for (const auto& [file, contracts] : taken_) {
      if (contracts.size() >= kSeveral) sheet_.add(file, kTakes, contracts.size());
    }
    for (const auto& [file, users] : filled_) {
      if (users.size() >= kSeveral) sheet_.add(file, kFilled, users.size());
    }
    for (const auto& [file, users] : handed_over_) {
      if (users.files.size() >= kSeveral) {
        sheet_.add(file, kRegisters, users.files.size(), users.at, names_and_lines(users.at));
      }
    }
  }

  void look_at(FileId file) {
    Lines lines;
    std::map<std::uint32_t, std::set<FileId>> tables;
    std::vector<Place> loads;
    const auto language = evidence_.index().files()[file].language;
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.target == IndexedReference::kOutside) {
        const bool loader = known_as(language, index::Known::kLoader, to.name) != nullptr;
        if (loader && to.role == Role::kCalls) loads.push_back(evidence_.place_of(to));
        continue;
      }
      if (to.declaration == 0 && to.role != Role::kString) continue;
      lines.push_back(&to);
      if (to.role == Role::kType && to.within > 0 && to.target != file) look_at_type(to);
      if (to.role == Role::kLists && to.within > 0 && to.target != file &&
          is_table(file, to.within)) {
        tables[to.within].insert(to.target);
      }
    }
    std::ranges::stable_sort(lines, {}, &IndexedReference::line);
    sheet_.add(file, kLoads, loads.empty() ? 0 : 1, loads, names_and_lines(loads));
    add_pairs(file, lines);
    add_registrations(file, lines);
    add_tables(file, tables);
  }

  // A contract that a field holds, or a type of which a value at the top of the file is a table.
  void look_at_type(const IndexedReference& to) {
    const DeclarationRef type{to.target, to.declaration - 1};
    const auto& holder = evidence_[DeclarationRef{to.source, to.within - 1}];
    if (holder.kind == DeclarationKind::kField || index::is_type(holder.kind)) {
      if (several_.contains(type)) taken_[to.source].insert(type);
    } else if ((holder.kind == DeclarationKind::kConstant ||
                holder.kind == DeclarationKind::kVariable) &&
               holder.container == 0 && holder.size > 1 && evidence_[type].fields > 1 &&
               evidence_.is_product(to.target)) {
      filled_[to.target].insert(to.source);
    }
  }

  bool is_table(FileId file, std::uint32_t within) const {
    const auto& holder = evidence_[DeclarationRef{file, within - 1}];
    return (holder.kind == DeclarationKind::kConstant ||
            holder.kind == DeclarationKind::kVariable || holder.kind == DeclarationKind::kField) &&
           (holder.shape == index::ValueShape::kNames ||
            holder.shape == index::ValueShape::kRecords);
  }

  using Lines = std::vector<const IndexedReference*>;
  using Line = std::span<const IndexedReference* const>;

  // By line.
  template <class Look>
  static void for_each_line(const Lines& all, Look look) {
    for (std::size_t at = 0, next = 0; at < all.size(); at = next) {
      while (next < all.size() && all[next]->line == all[at]->line) ++next;
      look(Line(all).subspan(at, next - at));
    }
  }

  // A contract and what implements it, on one line.
  void add_pairs(FileId file, const Lines& lines) {
    std::set<DeclarationRef> paired;
    std::vector<Place> places;
    for_each_line(lines, [&](Line references) {
      std::set<DeclarationRef> contracts;
      for (const IndexedReference* to : references) {
        const DeclarationRef type{to->target, to->declaration - 1};
        if (to->declaration > 0 && to->target != file && types_.contains(type))
          contracts.insert(type);
      }
      if (contracts.empty()) return;
      for (const IndexedReference* to : references) {
        if (to->declaration == 0 || kSubtyping.has(to->role) || to->target == file) continue;
        const auto found = implements_.find(DeclarationRef{to->target, to->declaration - 1});
        if (found == implements_.end()) continue;
        for (const DeclarationRef contract : contracts) {
          if (found->second.contains(contract) && paired.insert(contract).second) {
            places.push_back(evidence_.place_of(*to));
          }
        }
      }
    });
    const std::string names = names_and_lines(places);
    sheet_.add(file, kPairs, paired.size(), std::move(places), names);
  }

  // A call that hands over a function or type, or a decorator: registration with what it calls.
  void add_registrations(FileId file, const Lines& lines) {
    for_each_line(lines, [&](Line references) {
      // Handed over is what the file declares, or at the top of the file anything.
      const bool hands_over = std::ranges::any_of(references, [&](const IndexedReference* to) {
        return to->role == Role::kLists && to->declaration > 0 &&
               (to->target == file || to->within == 0) &&
               is_code(DeclarationRef{to->target, to->declaration - 1});
      });
      for (const IndexedReference* to : references) {
        if (to->declaration == 0 || to->target == file) continue;
        const DeclarationRef function{to->target, to->declaration - 1};
        const DeclarationKind kind = evidence_[function].kind;
        const bool callable =
            kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
        if (!callable || !evidence_.is_product(to->target)) continue;
        if (to->role == Role::kAnnotates || (to->role == Role::kCalls && hands_over)) {
          auto& users = handed_over_[to->target];
          users.files.insert(file);
          if (users.declared.insert(function).second) {
            users.at.push_back(evidence_.place_of(function));
          }
        }
      }
    });
  }

  bool is_code(DeclarationRef at) const {
    const DeclarationKind kind = evidence_[at].kind;
    return is_type(kind) || kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
  }

  void add_tables(FileId file, const std::map<std::uint32_t, std::set<FileId>>& tables) {
    std::set<FileId> listed;
    std::vector<Place> places;
    for (const auto& [within, files] : tables) {
      if (files.size() < kSeveral) continue;
      listed.insert(files.begin(), files.end());
      places.push_back(evidence_.place_of(DeclarationRef{file, within - 1}));
    }
    const std::string names = names_and_lines(places);
    sheet_.add(file, kTable, listed.size(), std::move(places), names);
  }

  struct HandedOver {
    std::set<FileId> files;
    std::set<DeclarationRef> declared;
    std::vector<Place> at;
  };

  const CodeEvidence& evidence_;
  std::span<const Contract> contracts_;
  ScoreSheet sheet_;
  std::set<DeclarationRef> types_;
  std::map<DeclarationRef, std::set<DeclarationRef>> implements_;
  std::set<DeclarationRef> several_;  // contracts of more than one implementer
  std::map<FileId, std::set<DeclarationRef>> taken_;
  std::map<FileId, std::set<FileId>> filled_;  // by the file of the type
  std::map<FileId, HandedOver> handed_over_;   // by the file of the function
};

}  // namespace

ScoreSheet extension_sheet(const CodeEvidence& evidence, std::span<const Contract> contracts) {
  return Signals(evidence, contracts).sheet();
}

}  // namespace kestrix
