#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/evidence/descendants.h"
#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/evidence/overriding.h"
#include "kestrix/host/flows/families.h"
#include "kestrix/host/flows/family_signs.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/sorting.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;

// One thing that files have in common which others call them through.
struct Sign {
  std::string_view verb;  // of the files: "extend", "bear"
  double weight;
  double least_alike;   // how many of the files have to be named alike
  bool strict = false;  // whether hardly anybody may name them, and they have to know the product
};

// The four have helped in jellyfin and scrapy, polar and netbox, jekyll and halo, tmux and redis.
constexpr Sign kOwnBase{"extend", 1.5, 0};
constexpr Sign kOwnMarker{"bear", 1.4, 0.6};
constexpr Sign kOutsideBase{"extend", 0.9, 0.6};
constexpr Sign kTable{"fill a table of type", 1.3, 0.6};
constexpr Sign kSameName{"each define", 1.1, 0.6, true};

// What so many name is something that these files do, not what they are.
constexpr std::size_t kMostOtherNamers = 2;
constexpr double kLeastQuiet = 0.5;
constexpr double kMostData = 0.3;
constexpr double kMostHeld = 0.5;
constexpr double kHeldFactor = 0.4;
constexpr double kUnlikeFactor = 0.6;
constexpr double kAlike = 0.6;
constexpr double kTogether = 0.8;
constexpr double kMostOverride = 0.5;
constexpr double kMostPassive = 0.5;

std::string_view last_word(std::string_view name) {
  return name.substr(name.find_last_of(".:/\\") + 1);
}

class TypeFamilies {
 public:
  TypeFamilies(const FlowEvidence& evidence, const PathPatterns& patterns)
      : code_(evidence.code),
        graph_(evidence.graph),
        patterns_(patterns),
        descendants_(evidence.code) {}

  std::vector<Family> find() {
    errors_.resize(code_.index().files().size());
    for (const DeclarationRef type : error_types(code_)) errors_[type.file] = true;
    take_references();
    take_names();
    for (auto& [base, files] : bases_) {
      take_descendants(base, files);
      sort_distinct(files);
      if (calls_them(base, files)) examine(kOwnBase, code_[base].name, std::move(files));
    }
    for (auto& [mark, files] : markers_) examine(kOwnMarker, code_[mark].name, std::move(files));
    for (auto& [type, files] : tables_) examine(kTable, code_[type].name, std::move(files));
    for (auto& [name, files] : outside_) examine(kOutsideBase, name.second, std::move(files));
    for (auto& [name, files] : same_) examine(kSameName, name.second, std::move(files));
    return std::move(families_);
  }

 private:
  using Files = std::vector<FileId>;

  void take_references() {
    const auto files = code_.index().files();
    for (const IndexedReference& to : code_.index().references()) {
      if (!code_.is_product(to.source)) continue;
      if (to.target == IndexedReference::kOutside) {
        take_outside(files[to.source].language, to);
      } else if (to.declaration > 0 && to.target != to.source && code_.is_product(to.target)) {
        take_inside({to.target, to.declaration - 1}, to);
      }
    }
  }

  void take_inside(DeclarationRef named, const IndexedReference& to) {
    if (kSubtyping.has(to.role)) {
      if (index::is_type(code_[named].kind)) bases_[named].push_back(to.source);
    } else if (to.role == Role::kAnnotates) {
      markers_[named].push_back(to.source);
    } else if (to.role == Role::kType && to.within > 0 && code_[named].fields > 0) {
      const auto& holder = code_[DeclarationRef{to.source, to.within - 1}];
      const bool value =
          holder.kind == DeclarationKind::kConstant || holder.kind == DeclarationKind::kVariable;
      if (value && holder.container == 0 && holder.size > 1) tables_[named].push_back(to.source);
    }
  }

  // What a library calls through its own base types, whoever it is.
  void take_outside(std::string_view language, const IndexedReference& to) {
    if (!kSubtyping.has(to.role) || to.within == 0) return;
    static constexpr Known kOther[] = {Known::kModelBase, Known::kRecordBase,
                                       Known::kErrorBase, Known::kSettingsBase,
                                       Known::kTestBase,  Known::kHandlerBase};
    for (const Known known : kOther) {
      if (known_as(language, known, to.name) != nullptr) return;
    }
    const std::string_view name = last_word(to.name);
    if (name != to.name) outside_[{language, name}].push_back(to.source);  // not the language's own
  }

  // Functions of one name in several files of a folder: one of them is called, or each by whoever
  // loads its file.
  void take_names() {
    const auto files = code_.index().files();
    std::map<std::pair<std::string_view, std::string_view>, Files> all;
    for (FileId file = 0; file < files.size(); ++file) {
      if (!code_.is_product(file) || is_header(files[file].path)) continue;
      for (const auto& declared : code_.index().declarations(file)) {
        if (declared.kind != DeclarationKind::kFunction || declared.container != 0) continue;
        if (declared.exported)
          all[{index::folder_of(files[file].path), declared.name}].push_back(file);
      }
    }
    for (auto& [name, found] : all) {
      sort_distinct(found);
      if (found.size() >= kLeastFamily) same_.emplace(name, std::move(found));
    }
  }

  void take_descendants(DeclarationRef base, Files& files) {
    for (const DeclarationRef subtype : descendants_.of(base)) {
      if (subtype.file != base.file) files.push_back(subtype.file);
    }
  }

  // A type calls its subtypes where it leaves members to them, or they have their own of one name.
  // Of classes that lie together, what their library does not show is taken for granted.
  bool calls_them(DeclarationRef base, const Files& files) const {
    const auto& declared = code_[base];
    if (declared.abstract_methods > 0 || declared.kind == DeclarationKind::kInterface) return true;
    if (overriding_share(code_, base, files) >= kMostOverride) return true;
    return declared.kind == DeclarationKind::kClass && patterns_.likeness(files) >= kTogether;
  }

  // Whether all types of a file are without behaviour.
  bool is_passive(FileId file) const {
    const auto declarations = code_.index().declarations(file);
    bool types = false;
    for (const auto& row : declarations) {
      if (row.kind == DeclarationKind::kFunction) return false;
      types |= index::is_type(row.kind);
      if (row.kind != DeclarationKind::kMethod || row.container == 0) continue;
      if (!is_constructor(row.name, declarations[row.container - 1].name)) return false;
    }
    return types;
  }

  void examine(const Sign& sign, std::string_view name, Files files) {
    sort_distinct(files);
    if (files.size() < kLeastFamily) return;
    std::erase_if(files, [this](FileId file) { return is_base(code_, file); });
    if (files.size() < kLeastFamily) return;
    const double alike = patterns_.likeness(files);
    if (alike < sign.least_alike) return;
    const auto share_of = [&](const auto& holds) {
      return static_cast<double>(std::ranges::count_if(files, holds)) /
             static_cast<double>(files.size());
    };
    if (share_of([&](FileId file) { return defines_data(code_, file) || errors_[file]; }) >
        kMostData) {
      return;
    }
    if (share_of([&](FileId file) { return is_passive(file); }) > kMostPassive) return;
    const std::set<FileId> hubs = hubs_of(files);
    const double quiet = share_of([&](FileId file) { return is_quiet(file, files, hubs); });
    if (quiet < kLeastQuiet || (sign.strict && !are_on_their_own(files))) return;
    Family family{
        .glob = patterns_.glob_of(files),
        .sign = fmt::format("{} {} {}", counted(files.size(), "file", "files"), sign.verb, name)};
    family.score = sign.weight * quiet * std::log2(1.0 + static_cast<double>(files.size()));
    if (alike < kAlike) family.score *= kUnlikeFactor;
    if (share_of([&](FileId file) { return is_field_elsewhere(code_, file, files); }) > kMostHeld) {
      family.score *= kHeldFactor;
    }
    family.files = std::move(files);
    families_.push_back(std::move(family));
  }

  // To hold one as a field or take one as an argument is to make use of it, too.
  bool is_use(const Naming& naming) const {
    return naming.used && !naming.derives && code_.is_product(naming.from);
  }

  // Who names a third of them.
  std::set<FileId> hubs_of(const Files& files) const {
    std::map<FileId, std::size_t> namers;
    for (const FileId file : files) {
      for (const Naming& naming : graph_.to(file)) {
        if (is_use(naming)) ++namers[naming.from];
      }
    }
    std::set<FileId> hubs;
    for (const auto& [file, count] : namers) {
      if (count >= 2 && count * 3 >= files.size()) hubs.insert(file);
    }
    return hubs;
  }

  bool are_on_their_own(const Files& files) const {
    std::set<FileId> users;
    for (const FileId file : files) {
      if (graph_.from(file).empty()) return false;
      for (const Naming& by : graph_.to(file)) {
        if (is_use(by)) users.insert(by.from);
      }
    }
    return users.size() <= kMostOtherNamers;
  }

  bool is_quiet(FileId file, const Files& members, const std::set<FileId>& hubs) const {
    const auto others = std::ranges::count_if(graph_.to(file), [&](const Naming& naming) {
      return is_use(naming) && !hubs.contains(naming.from) &&
             !std::ranges::binary_search(members, naming.from);
    });
    return static_cast<std::size_t>(others) <= kMostOtherNamers;
  }

  const CodeEvidence& code_;
  const NamingGraph& graph_;
  const PathPatterns& patterns_;
  Descendants descendants_;
  std::vector<bool> errors_;  // by file: whether it defines one
  std::map<DeclarationRef, Files> bases_;
  std::map<DeclarationRef, Files> markers_;
  std::map<DeclarationRef, Files> tables_;
  std::map<std::pair<std::string_view, std::string_view>, Files> outside_;  // by language and name
  std::map<std::pair<std::string_view, std::string_view>, Files> same_;     // by folder and name
  std::vector<Family> families_;
};

}  // namespace

std::vector<Family> type_families(const FlowEvidence& evidence, const PathPatterns& patterns) {
  return TypeFamilies(evidence, patterns).find();
}

}  // namespace kestrix
