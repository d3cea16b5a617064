#include "kestrix/host/data_models/type_groups.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "kestrix/host/index_evidence.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::Role;
using Storage = DataType::Storage;

// High: it stands for all of them.
constexpr Signal kGathers{"gathers_types", 4.5, "lists {} type of the data",
                          "lists {} types of the data", "polar, nowinandroid"};
constexpr Signal kWorks{"works_on_type", 0.8, "{} file calls what it does with a data type",
                        "{} files call what it does with a data type", "tmux"};

constexpr std::size_t kGroup = 5;  // fewer types are no group
constexpr std::uint32_t kNamers = 3;
constexpr std::size_t kFunctions = 3;
constexpr std::size_t kShortest = 3;  // of a type's name in a function's
constexpr std::size_t kLongest = 64;

bool is_data(const DataType& type) { return type.likeness >= kDataLikeness; }

class Gatherers {
 public:
  Gatherers(const CodeEvidence& evidence, std::span<const DataType> types)
      : evidence_(evidence), types_(types) {}

  void add(ScoreSheet& sheet) {
    const std::vector<std::uint32_t> group = types_that_belong_together();
    if (group.size() < kGroup) return;
    for (const std::uint32_t at : group) {
      of_file_[types_[at].at.file].insert(at);
      for (const FileId file :
           evidence_.files_naming(types_[at].at, {Role::kLists, Role::kString})) {
        listed_[file].insert(at);
      }
    }
    add_indexes();
    for (const auto& [file, listed] : listed_) {
      if (listed.size() < kGroup || 2 * listed.size() < group.size()) continue;
      std::vector<Place> places;
      for (const std::uint32_t at : listed) places.push_back(evidence_.place_of(types_[at].at));
      const std::string names = names_and_lines(places);
      sheet.add(file, kGathers, listed.size(), std::move(places), names);
    }
  }

 private:
  // All that are stored; without such, the data types that extend one, of which there are the most.
  std::vector<std::uint32_t> types_that_belong_together() const {
    std::vector<std::uint32_t> stored;
    std::vector<std::uint32_t> family;
    for (std::uint32_t at = 0; at < types_.size(); ++at) {
      if (types_[at].storage == Storage::kStored) stored.push_back(at);
      if (!is_data(types_[at]) || types_[at].subtypes.size() <= family.size()) continue;
      std::vector<std::uint32_t> subtypes;
      for (const std::uint32_t subtype : types_[at].subtypes) {
        if (is_data(types_[subtype])) subtypes.push_back(subtype);
      }
      if (subtypes.size() > family.size()) family = std::move(subtypes);
    }
    return stored.size() >= kGroup ? stored : family;
  }

  // Files that only hand on what others declare.
  void add_indexes() {
    for (const auto& edge : evidence_.index().edges()) {
      const auto found = of_file_.find(edge.target);
      if (found == of_file_.end() || edge.source == edge.target) continue;
      if (!evidence_.is_product(edge.source) || does_anything(edge.source)) continue;
      listed_[edge.source].insert(found->second.begin(), found->second.end());
    }
  }

  bool does_anything(FileId file) const {
    return std::ranges::any_of(evidence_.index().declarations(file), [](const auto& row) {
      return is_type(row.kind) || row.kind == DeclarationKind::kFunction;
    });
  }

  const CodeEvidence& evidence_;
  std::span<const DataType> types_;
  std::map<FileId, std::set<std::uint32_t>> of_file_;  // of the group
  std::map<FileId, std::set<std::uint32_t>> listed_;
};

bool is_c(std::string_view language) { return language == "c" || language == "cpp"; }

// The letters alone, in lower case: "window_pane" and "WindowPane" are one.
std::string letters_of(std::string_view name) {
  std::string letters;
  for (const char c : name) {
    if (c != '_') letters.push_back(ascii::lower(c));
  }
  return letters;
}

class Workers {
 public:
  Workers(const CodeEvidence& evidence, std::span<const DataType> types)
      : evidence_(evidence), types_(types) {
    for (const DataType& type : types_) {
      const auto& row = evidence_[type.at];
      const bool named = type.namers >= kNamers && row.name.size() <= kLongest;
      if (row.kind == DeclarationKind::kStruct && is_data(type) && named && is_c(language(type.at)))
        by_name_.emplace(letters_of(row.name), type.at);
    }
  }

  void add(ScoreSheet& sheet) const {
    if (by_name_.empty()) return;
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (evidence_.index().files()[file].language == "c" && evidence_.is_product(file))
        add_file(file, sheet);
    }
  }

 private:
  struct Work {
    std::set<FileId> users;
    std::vector<Place> functions;
  };

  std::string_view language(DeclarationRef at) const {
    return evidence_.index().files()[at.file].language;
  }

  // The type with the longest name that the function's begins with.
  const DeclarationRef* type_in(std::string_view function) const {
    for (std::size_t end = std::min(function.size(), kLongest); end >= kShortest; --end) {
      const bool whole = end == function.size() || function[end] == '_' ||
                         (function[end] >= 'A' && function[end] <= 'Z');
      if (!whole) continue;
      const auto found = by_name_.find(letters_of(function.substr(0, end)));
      if (found != by_name_.end()) return &found->second;
    }
    return nullptr;
  }

  void add_file(FileId file, ScoreSheet& sheet) const {
    std::map<DeclarationRef, Work> work;
    const auto rows = evidence_.index().declarations(file);
    for (std::uint32_t place = 0; place < rows.size(); ++place) {
      if (rows[place].kind != DeclarationKind::kFunction) continue;
      const DeclarationRef* type = type_in(rows[place].name);
      if (type == nullptr || type->file == file) continue;
      const auto naming = evidence_.files_naming({file, place}, {Role::kCalls});
      if (naming.empty()) continue;
      Work& of_type = work[*type];
      of_type.users.insert(naming.begin(), naming.end());
      of_type.functions.push_back(evidence_.place_of(DeclarationRef{file, place}));
    }
    const Work* most = nullptr;
    for (const auto& [type, each] : work) {
      const bool more = most == nullptr || each.users.size() > most->users.size();
      if (each.functions.size() >= kFunctions && more) most = &each;
    }
    if (most == nullptr) return;
    sheet.add(file, kWorks, most->users.size(), most->functions, names_and_lines(most->functions));
  }

  const CodeEvidence& evidence_;
  std::span<const DataType> types_;
  std::map<std::string, DeclarationRef> by_name_;
};

}  // namespace

void add_gatherers(const CodeEvidence& evidence, std::span<const DataType> types,
                   ScoreSheet& sheet) {
  Gatherers(evidence, types).add(sheet);
}

void add_workers(const CodeEvidence& evidence, std::span<const DataType> types, ScoreSheet& sheet) {
  Workers(evidence, types).add(sheet);
}

}  // namespace kestrix
