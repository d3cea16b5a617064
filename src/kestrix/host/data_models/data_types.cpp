#include "kestrix/host/data_models/data_types.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <set>
#include <string_view>
#include <unordered_map>

#include "kestrix/host/data_models/data_likeness.h"
#include "kestrix/host/data_models/type_table.h"
#include "kestrix/host/evidence/error_types.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::DeclarationView;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;
using Storage = DataType::Storage;

// What more of the product's folders name, but not fewer than ten, is handed around: a logger, a
// factory, a table of translations.
constexpr double kEverywhere = 0.4;
constexpr std::size_t kFewFolders = 10;
// So many are no accident: the product has its data in a storage.
constexpr std::size_t kSeveralStored = 3;
constexpr std::size_t kMostCentral = 5;

class Gatherer {
 public:
  explicit Gatherer(const CodeEvidence& evidence)
      : evidence_(evidence), index_(evidence.index()), table_(evidence), types_(table_.take()) {
    seen_.resize(types_.size());
    number_folders();
  }

  std::vector<DataType> gather() {
    for (const IndexedReference& to : index_.references()) look_at(to);
    for (std::size_t at = 0; at < types_.size(); ++at) settle(at);
    inherit_storage();
    inherit_upward();
    for (const DeclarationRef error : error_types(evidence_)) {
      if (const auto type = table_.type_of(error.file, error.place + 1); type != TypeTable::kNone) {
        types_[type].is_error = types_[type].at == error;
      }
    }
    judge();
    return std::move(types_);
  }

 private:
  // What is counted once a file, while the references of one file come in a row.
  struct Seen {
    FileId namer = IndexedReference::kOutside;
    FileId user = IndexedReference::kOutside;
    FileId maker = IndexedReference::kOutside;
    std::vector<std::uint32_t> folders;
  };

  void number_folders() {
    std::unordered_map<std::string_view, std::uint32_t, SeededHash> numbers;
    std::set<std::uint32_t> of_product;
    const auto files = index_.files();
    folders_.resize(files.size());
    for (FileId file = 0; file < files.size(); ++file) {
      const auto next = static_cast<std::uint32_t>(numbers.size());
      folders_[file] = numbers.try_emplace(index::folder_of(files[file].path), next).first->second;
      const bool code = evidence_.is_product(file) && !index_.declarations(file).empty();
      if (code) of_product.insert(folders_[file]);
    }
    product_folders_ = of_product.size();
  }

  void look_at(const IndexedReference& to) {
    const std::uint32_t holder = table_.type_of(to.source, to.within);
    if (to.role == Role::kConstructs || to.role == Role::kThrows) look_at_method(to, holder);
    if (to.target == IndexedReference::kOutside) {
      if (holder != TypeTable::kNone) look_outside(to, holder);
      return;
    }
    const std::uint32_t target = table_.type_of(to.target, to.declaration);
    if (target == TypeTable::kNone) return;
    if (evidence_.is_test(to.source)) {
      if (to.role == Role::kConstructs)
        take_once(seen_[target].maker, to.source, types_[target].makers);
      return;
    }
    if (!evidence_.is_product(to.source)) return;
    const bool itself = types_[target].at.place + 1 == to.declaration;
    if (itself && holder != TypeTable::kNone && holder != target)
      look_at_holder(to, holder, target);
    if (to.source != to.target) look_at_namer(to, target);
  }

  // A short method that makes something else, or throws, does work all the same.
  void look_at_method(const IndexedReference& to, std::uint32_t holder) {
    if (holder == TypeTable::kNone) return;
    const bool outside = to.target == IndexedReference::kOutside;
    if (!outside && table_.type_of(to.target, to.declaration) == holder) return;
    const DeclarationView& row = index_.declarations(to.source)[to.within - 1];
    if (!is_method(row) || !is_accessor(row) || types_[holder].accessors == 0) return;
    if (!workers_.emplace(to.source, to.within).second) return;
    --types_[holder].accessors;
    ++types_[holder].workers;
  }

  void look_outside(const IndexedReference& to, std::uint32_t holder) {
    const std::string_view language = index_.files()[to.source].language;
    const auto is = [&](Known known) { return known_as(language, known, to.name) != nullptr; };
    Storage found = Storage::kNone;
    if (kSubtyping.has(to.role)) {
      if (is(Known::kModelBase))
        found = Storage::kStored;
      else if (is(Known::kRecordBase))
        found = Storage::kExchanged;
    } else if (to.role == Role::kAnnotates) {
      if (is(Known::kModelMarker))
        found = Storage::kStored;
      else if (is(Known::kRecordMarker))
        found = Storage::kExchanged;
    } else if (to.role == Role::kCalls || to.role == Role::kConstructs) {
      if (is(Known::kModelList))
        found = Storage::kStored;
      else if (is(Known::kRecordList))
        found = Storage::kExchanged;
    } else if (to.role == Role::kType && is(Known::kModelList)) {
      lists_.insert({to.source, to.within});
    }
    types_[holder].storage = std::max(types_[holder].storage, found);
  }

  void look_at_holder(const IndexedReference& to, std::uint32_t holder, std::uint32_t target) {
    if (kSubtyping.has(to.role)) {
      types_[target].subtypes.push_back(holder);
    } else if (to.role == Role::kType) {
      const DeclarationKind kind = index_.declarations(to.source)[to.within - 1].kind;
      const bool field = is_type(kind) || kind == DeclarationKind::kField ||
                         kind == DeclarationKind::kVariable || kind == DeclarationKind::kConstant;
      if (field) types_[target].holders.push_back(holder);
      if (lists_.contains({to.source, to.within})) types_[target].storage = Storage::kStored;
    }
  }

  void look_at_namer(const IndexedReference& to, std::uint32_t target) {
    DataType& type = types_[target];
    Seen& seen = seen_[target];
    if (seen.namer != to.source && folders_[to.source] != folders_[to.target]) {
      seen.folders.push_back(folders_[to.source]);
    }
    take_once(seen.namer, to.source, type.namers);
    if (to.role != Role::kConstructs) take_once(seen.user, to.source, type.users);
  }

  static void take_once(FileId& last, FileId file, std::uint32_t& count) {
    if (last == file) return;
    last = file;
    ++count;
  }

  static void make_distinct(std::vector<std::uint32_t>& places) {
    std::ranges::sort(places);
    places.erase(std::unique(places.begin(), places.end()), places.end());
  }

  void settle(std::size_t at) {
    make_distinct(types_[at].holders);
    make_distinct(types_[at].subtypes);
    make_distinct(seen_[at].folders);
    types_[at].folders = static_cast<std::uint32_t>(seen_[at].folders.size());
    const auto most = std::max(kEverywhere * static_cast<double>(product_folders_),
                               static_cast<double>(kFewFolders));
    types_[at].is_everywhere = types_[at].folders > most;
  }

  void inherit_storage() {
    std::vector<std::uint32_t> open;
    for (std::uint32_t at = 0; at < types_.size(); ++at) {
      if (types_[at].storage != Storage::kNone) open.push_back(at);
    }
    while (!open.empty()) {
      const DataType& base = types_[open.back()];
      open.pop_back();
      for (const std::uint32_t subtype : base.subtypes) {
        if (types_[subtype].storage >= base.storage) continue;
        types_[subtype].storage = base.storage;
        open.push_back(subtype);
      }
    }
  }

  // A base of which most subtypes are stored is stored with them.
  void inherit_upward() {
    for (DataType& type : types_) {
      const DeclarationKind kind = evidence_[type.at].kind;
      const bool base = kind == DeclarationKind::kClass || kind == DeclarationKind::kStruct;
      if (!base || type.storage == Storage::kStored) continue;
      const auto stored = std::ranges::count_if(
          type.subtypes, [&](std::uint32_t at) { return types_[at].storage == Storage::kStored; });
      const auto count = static_cast<std::size_t>(stored);
      if (count >= 2 && 2 * count >= type.subtypes.size()) type.storage = Storage::kStored;
    }
  }

  // Languages that share their types count as one.
  std::string_view kind_of_language(const DataType& type) const {
    const std::string_view language = index_.files()[type.at.file].language;
    if (language == "tsx" || language == "javascript") return "typescript";
    return language == "kotlin" || language == "scala" ? "java" : language;
  }

  // By language, how many files use the most central of the types that are stored.
  std::map<std::string_view, double> stored_types() const {
    std::map<std::string_view, std::vector<double>> users;
    for (const DataType& type : types_) {
      if (type.storage == Storage::kStored) users[kind_of_language(type)].push_back(type.users);
    }
    std::map<std::string_view, double> means;
    for (auto& [language, counts] : users) {
      if (counts.size() < kSeveralStored) continue;
      std::ranges::sort(counts, std::ranges::greater());
      counts.resize(std::min(counts.size(), kMostCentral));
      means[language] = std::reduce(counts.begin(), counts.end()) / kMostCentral;
    }
    return means;
  }

  std::vector<double> likenesses_by_shape() const {
    std::vector<double> shapes;
    for (const DataType& type : types_) {
      shapes.push_back(type.is_error ? 0 : likeness_by_shape(type, evidence_[type.at]));
    }
    // What does work for a type is no data that it holds.
    std::vector<std::uint32_t> served(types_.size());
    for (std::size_t at = 0; at < types_.size(); ++at) {
      const DeclarationKind kind = evidence_[types_[at].at].kind;
      const bool value = kind == DeclarationKind::kEnum || kind == DeclarationKind::kAlias;
      if (shapes[at] >= kDataLikeness || value || !is_type(kind) || types_[at].is_error) continue;
      for (const std::uint32_t holder : types_[at].holders) ++served[holder];
    }
    for (std::size_t at = 0; at < types_.size(); ++at) {
      DataType type = types_[at];
      if (served[at] == 0 || type.is_error || type.storage != Storage::kNone) continue;
      type.fields -= std::min(type.fields, served[at]);
      shapes[at] = likeness_by_shape(type, evidence_[type.at]);
    }
    return shapes;
  }

  void judge() {
    const auto stored = stored_types();
    const std::vector<double> shapes = likenesses_by_shape();
    for (std::size_t at = 0; at < types_.size(); ++at) {
      DataType& type = types_[at];
      double shape = shapes[at];
      if (is_contract(type, evidence_[type.at])) {
        std::vector<double> implementers;
        for (const std::uint32_t subtype : type.subtypes) implementers.push_back(shapes[subtype]);
        shape = std::max(shape, likeness_of_contract(evidence_[type.at], std::move(implementers)));
      }
      const auto found = stored.find(kind_of_language(type));
      type.likeness =
          likeness_of(type, shape,
                      {.any = !stored.empty(), .users = found == stored.end() ? 0 : found->second});
    }
  }

  const CodeEvidence& evidence_;
  const index::RepositoryIndex& index_;
  TypeTable table_;
  std::vector<DataType> types_;
  std::vector<std::uint32_t> folders_;  // by file
  std::size_t product_folders_ = 0;
  std::vector<Seen> seen_;                              // by type
  std::set<std::pair<FileId, std::uint32_t>> workers_;  // short methods that do work
  std::set<std::pair<FileId, std::uint32_t>> lists_;    // fields whose type arguments are stored
};

}  // namespace

std::vector<DataType> data_types(const CodeEvidence& evidence) {
  return Gatherer(evidence).gather();
}

}  // namespace kestrix
