#include "kestrix/host/data_models/data_types.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>

#include "kestrix/host/data_models/data_likeness.h"
#include "kestrix/host/evidence/error_types.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"

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

// A method of so few lines hands out or sets what the type holds; a longer one does work.
constexpr std::uint32_t kAccessorLines = 5;
// What more of the product's folders name, but not fewer than ten, is handed around: a logger, a
// factory, a table of translations.
constexpr double kEverywhere = 0.4;
constexpr std::size_t kFewFolders = 10;
// So many are no accident: the product has its data in a storage.
constexpr std::size_t kSeveralStored = 3;

constexpr std::uint32_t kNoType = UINT32_MAX;

bool is_getter(std::string_view name) {
  for (const std::string_view verb : {"get", "is", "has"}) {
    if (name.starts_with(verb) && name.size() > verb.size() &&
        (name[verb.size()] < 'a' || name[verb.size()] > 'z')) {
      return true;
    }
  }
  return false;
}

class Gatherer {
 public:
  explicit Gatherer(const CodeEvidence& evidence) : evidence_(evidence), index_(evidence.index()) {
    number_folders();
    take_types();
  }

  std::vector<DataType> gather() {
    for (const IndexedReference& to : index_.references()) look_at(to);
    for (std::size_t at = 0; at < types_.size(); ++at) settle(at);
    inherit_storage();
    for (const DeclarationRef error : error_types(evidence_)) {
      if (const auto type = type_of(error.file, error.place + 1); type != kNoType) {
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
    std::unordered_map<std::string_view, std::uint32_t> numbers;
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

  void take_types() {
    const auto files = index_.files();
    first_.resize(files.size() + 1);
    for (FileId file = 0; file < files.size(); ++file) {
      const auto rows = index_.declarations(file);
      first_[file + 1] = first_[file] + static_cast<std::uint32_t>(rows.size());
      owner_.resize(first_[file + 1], kNoType);
      if (!evidence_.is_product(file)) continue;
      for (std::uint32_t place = 0; place < rows.size(); ++place) take(file, rows, place);
    }
    seen_.resize(types_.size());
  }

  void take(FileId file, std::span<const DeclarationView> rows, std::uint32_t place) {
    const DeclarationView& row = rows[place];
    std::uint32_t& owner = owner_[first_[file] + place];
    const bool inside =
        row.container != 0 && rows[row.container - 1].kind != DeclarationKind::kModule;
    if (inside) {
      owner = owner_[first_[file] + row.container - 1];
      if (owner != kNoType && types_[owner].at.place + 1 == row.container) count_member(owner, row);
      return;
    }
    const bool value =
        row.kind == DeclarationKind::kConstant || row.kind == DeclarationKind::kVariable;
    if (!is_type(row.kind) && !value) return;
    owner = static_cast<std::uint32_t>(types_.size());
    types_.push_back({.at = {file, place}, .fields = row.fields});
  }

  void count_member(std::uint32_t owner, const DeclarationView& row) {
    if (row.kind != DeclarationKind::kMethod && row.kind != DeclarationKind::kFunction) return;
    DataType& type = types_[owner];
    const bool getter = row.is_abstract && is_getter(row.name);
    if (getter) ++type.getters;
    ++(row.last_line - row.line < kAccessorLines ? type.accessors : type.workers);
  }

  // The type that a declaration, counted from one, belongs to.
  std::uint32_t type_of(FileId file, std::uint32_t declaration) const {
    return declaration == 0 ? kNoType : owner_[first_[file] + declaration - 1];
  }

  void look_at(const IndexedReference& to) {
    const std::uint32_t holder = type_of(to.source, to.within);
    if (to.target == IndexedReference::kOutside) {
      if (holder != kNoType) look_outside(to, holder);
      return;
    }
    const std::uint32_t target = type_of(to.target, to.declaration);
    if (target == kNoType) return;
    if (evidence_.is_test(to.source)) {
      if (to.role == Role::kConstructs)
        take_once(seen_[target].maker, to.source, types_[target].makers);
      return;
    }
    if (!evidence_.is_product(to.source)) return;
    const bool itself = types_[target].at.place + 1 == to.declaration;
    if (itself && holder != kNoType && holder != target) look_at_holder(to, holder, target);
    if (to.source != to.target) look_at_namer(to, target);
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

  void judge() {
    const auto stored = std::ranges::count(types_, Storage::kStored, &DataType::storage);
    const bool beside = static_cast<std::size_t>(stored) >= kSeveralStored;
    for (DataType& type : types_) type.likeness = likeness_of(type, evidence_[type.at], beside);
  }

  const CodeEvidence& evidence_;
  const index::RepositoryIndex& index_;
  std::vector<std::uint32_t> folders_;  // by file
  std::size_t product_folders_ = 0;
  std::vector<std::uint32_t> first_;  // by file: where its declarations begin in `owner_`
  std::vector<std::uint32_t> owner_;  // by declaration: its type
  std::vector<DataType> types_;
  std::vector<Seen> seen_;                            // by type
  std::set<std::pair<FileId, std::uint32_t>> lists_;  // fields whose type arguments are stored
};

}  // namespace

std::vector<DataType> data_types(const CodeEvidence& evidence) {
  return Gatherer(evidence).gather();
}

}  // namespace kestrix
