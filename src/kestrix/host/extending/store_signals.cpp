#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::DeclarationView;
using index::FileId;
using index::IndexedReference;
using index::Role;
using index::ValueShape;

constexpr Signal kRegisters{"registers", 3.4, "{} function registers what it is given",
                            "{} functions register what they are given", "netbox, caddy"};
constexpr Signal kStore{"registered_in", 3.0, "{} function registers in its values",
                        "{} functions register in its values", "netbox, redis"};
constexpr Signal kLoads{"loads_by_name", 2.4, "loads code by name", "loads code by name in {} ways",
                        "redis, scrapy"};

constexpr RoleSet kNaming{Role::kUses, Role::kLists, Role::kCalls};
constexpr RoleSet kLoading{Role::kCalls, Role::kConstructs, Role::kExtends};
constexpr std::array<std::string_view, 1> kRegister = {"register"};
constexpr std::array<std::string_view, 3> kTaking = {"register", "listen", "subscribe"};
constexpr std::size_t kCallers = 2;
constexpr std::size_t kFilling = 3;  // so many functions make a value what others register in
constexpr std::size_t kWays = 2;     // code loads by one name what it could as well import

bool is_callable(DeclarationKind kind) {
  return kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
}

class StoreSignals {
 public:
  StoreSignals(const CodeEvidence& evidence, ScoreSheet& sheet)
      : evidence_(evidence), sheet_(sheet) {}

  void add() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file)) continue;
      add_registering(file);
      add_loading(file);
    }
    for (const auto& [file, functions] : filled_) {
      if (functions.size() < kFilling) continue;
      std::vector<Place> places;
      for (const DeclarationRef function : functions) {
        if (places.size() == kMostPlaces) break;
        places.push_back(evidence_.place_of(function));
      }
      const std::string names = names_and_lines(places);
      sheet_.add(file, kStore, functions.size(), std::move(places), names);
    }
  }

 private:
  std::span<const DeclarationView> declarations(FileId file) const {
    return evidence_.index().declarations(file);
  }

  // Whether others may call it to add what is theirs; what a base type asks for is called by it.
  bool takes(FileId file, const DeclarationView& row) const {
    if (!is_callable(row.kind) || !row.exported || !has_word(row.name, kTaking)) return false;
    if (row.container == 0) return true;
    const auto& holder = declarations(file)[row.container - 1];
    return holder.bases().empty() && !is_callable(holder.kind);
  }

  // The types of a file, by place from one, with a field that begins empty.
  std::set<std::uint32_t> keepers(FileId file) const {
    std::set<std::uint32_t> keeping;
    for (const DeclarationView& row : declarations(file)) {
      if (row.kind == DeclarationKind::kField && row.shape == ValueShape::kEmpty) {
        keeping.insert(row.container);
      }
    }
    keeping.erase(0);
    return keeping;
  }

  void add_registering(FileId file) {
    const auto rows = declarations(file);
    std::set<std::uint32_t> taking;  // from one, as references have them
    for (std::uint32_t at = 0; at < rows.size(); ++at) {
      if (takes(file, rows[at])) taking.insert(at + 1);
    }
    if (taking.empty()) return;
    std::set<std::uint32_t> found;
    const std::set<std::uint32_t> keeping = keepers(file);
    for (const std::uint32_t at : taking) {
      const DeclarationRef function{file, at - 1};
      if (keeping.contains(rows[at - 1].container) ||
          (has_word(rows[at - 1].name, kRegister) &&
           evidence_.files_naming(function, kEveryRole).size() >= kCallers)) {
        found.insert(at);
      }
    }
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (!taking.contains(to.within) || !has_word(rows[to.within - 1].name, kRegister)) continue;
      if (!kNaming.has(to.role) || !is_store(to)) continue;
      found.insert(to.within);
      filled_[to.target].insert({file, to.within - 1});
    }
    std::map<std::string_view, Place> places;  // overloads are one function
    for (const std::uint32_t at : found) {
      places.emplace(rows[at - 1].name, evidence_.place_of(DeclarationRef{file, at - 1}));
    }
    std::vector<Place> at;
    for (auto& [name, place] : places) at.push_back(std::move(place));
    std::ranges::sort(at, {}, &Place::line);
    const std::string names = names_and_lines(at);
    sheet_.add(file, kRegisters, places.size(), std::move(at), names);
  }

  // A value of the product that lives as long as the program and may hold others.
  bool is_store(const IndexedReference& to) const {
    if (to.target == IndexedReference::kOutside || to.declaration == 0) return false;
    if (!evidence_.is_product(to.target)) return false;
    const auto& value = evidence_[DeclarationRef{to.target, to.declaration - 1}];
    if (value.kind != DeclarationKind::kVariable && value.kind != DeclarationKind::kConstant) {
      return false;
    }
    if (value.shape == ValueShape::kScalar || value.shape == ValueShape::kStrings) return false;
    if (value.container == 0) return true;
    const DeclarationKind holder = declarations(to.target)[value.container - 1].kind;
    return holder == DeclarationKind::kModule || holder == DeclarationKind::kObject ||
           holder == DeclarationKind::kTrait;
  }

  void add_loading(FileId file) {
    const std::string_view language = evidence_.index().files()[file].language;
    std::set<std::string_view> ways;
    std::vector<Place> places;
    bool extends = false;
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.target != IndexedReference::kOutside) break;  // those come first
      if (!kLoading.has(to.role)) continue;
      if (known_as(language, index::Known::kLoader, to.name) == nullptr) continue;
      if (ways.insert(to.name).second) places.push_back(evidence_.place_of(to));
      extends |= to.role == Role::kExtends;
    }
    if (ways.size() < kWays && !extends) return;
    std::ranges::sort(places, {}, &Place::line);
    const std::string names = names_and_lines(places);
    sheet_.add(file, kLoads, std::max(ways.size(), kWays), std::move(places), names);
  }

  const CodeEvidence& evidence_;
  ScoreSheet& sheet_;
  std::map<FileId, std::set<DeclarationRef>> filled_;  // by the file of the value
};

}  // namespace

void add_store_signals(const CodeEvidence& evidence, ScoreSheet& sheet) {
  StoreSignals(evidence, sheet).add();
}

}  // namespace kestrix
