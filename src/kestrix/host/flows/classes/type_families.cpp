#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/evidence/descendants.h"
#include "kestrix/host/evidence/overriding.h"
#include "kestrix/host/flows/classes/families.h"
#include "kestrix/host/flows/classes/family_signs.h"
#include "kestrix/host/flows/classes/type_signs.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/sorting.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;

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
constexpr Sign kOnLoad{"call, when loaded,", 1.2, 0.6};
constexpr Sign kMethods{"give methods to", 1.1, 0.6};
constexpr Sign kSameName{"each define", 1.1, 0.6, true};

// What so many name is something that these files do, not what they are.
constexpr std::size_t kMostOtherNamers = 2;
constexpr double kLeastQuiet = 0.5;
constexpr double kMostData = 0.3;
constexpr double kMostHeld = 0.5;
constexpr double kHeldFactor = 0.4;
constexpr double kUnlikeFactor = 0.6;
constexpr double kAlike = 0.6;
constexpr std::size_t kMany = 20;
constexpr double kTogether = 0.8;
constexpr double kMostOverride = 0.5;
constexpr double kMostPassive = 0.5;

class TypeFamilies {
 public:
  TypeFamilies(const FlowEvidence& evidence, const PathPatterns& patterns)
      : code_(evidence.code),
        graph_(evidence.graph),
        patterns_(patterns),
        descendants_(evidence.code),
        signs_(type_signs(evidence.code)),
        errors_(evidence.errors) {}

  std::vector<Family> find() {
    for (auto& [base, files] : signs_.bases) {
      take_descendants(base, files);
      sort_distinct(files);
      if (errors_.contains(base) || signs_.data.contains(base)) continue;
      if (calls_them(base, files)) examine(kOwnBase, code_[base].name, std::move(files));
    }
    for (auto& [mark, files] : signs_.markers) {
      if (is_looked_up(mark)) examine(kOwnMarker, code_[mark].name, files);
    }
    for (auto& [type, files] : signs_.tables) examine(kTable, code_[type].name, files);
    for (auto& [call, files] : signs_.on_load) examine(kOnLoad, code_[call].name, files);
    for (auto& [type, files] : signs_.methods) {
      sort_distinct(files);
      if (!is_passed_around(type, files)) examine(kMethods, code_[type].name, files);
    }
    for (auto& [name, files] : signs_.outside) examine(kOutsideBase, name.second, files);
    for (auto& [name, files] : signs_.same) examine(kSameName, name.second, files);
    return std::move(families_);
  }

 private:
  using Files = TypeSigns::Files;

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

  bool is_data(FileId file) const {
    return defines_data(code_, file) || is_mostly(code_, file, errors_) ||
           is_mostly(code_, file, signs_.data);
  }

  // Whether all types of a file are without behaviour, but for what another of them has.
  bool is_passive(FileId file, const Files& members) const {
    const auto declarations = code_.index().declarations(file);
    const auto named = code_.index().references_from(file);
    if (std::ranges::any_of(named, [&](const IndexedReference& to) {
          return kSubtyping.has(to.role) && to.target != file &&
                 std::ranges::binary_search(members, to.target);
        })) {
      return false;
    }
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
    const Files all = files;
    std::erase_if(files, [&](FileId file) { return is_base_of(code_, file, all); });
    if (files.size() < kLeastFamily) return;
    const double alike = patterns_.likeness(files);
    if (std::max(alike, patterns_.likeness_of_places(files)) < sign.least_alike) return;
    const auto share_of = [&](const auto& holds) {
      return static_cast<double>(std::ranges::count_if(files, holds)) /
             static_cast<double>(files.size());
    };
    if (share_of([&](FileId file) { return is_data(file); }) > kMostData) {
      return;
    }
    if (share_of([&](FileId file) { return is_passive(file, all); }) > kMostPassive) return;
    const std::set<FileId> hubs = hubs_of(files);
    const double quiet = share_of([&](FileId file) { return is_quiet(file, files, hubs); });
    if (quiet < kLeastQuiet || (sign.strict && !are_on_their_own(files))) return;
    Family family{
        .sign = fmt::format("{} {} {}", counted(files.size(), "file", "files"), sign.verb, name)};
    family.score = sign.weight * quiet * std::log2(1.0 + static_cast<double>(files.size()));
    if (alike < kAlike) family.score *= kUnlikeFactor;
    family.loose = alike < kAlike && files.size() >= kMany;
    const auto held = static_cast<double>(count_held(files, hubs, &sign == &kOwnBase));
    if (held > kMostHeld * static_cast<double>(files.size())) family.score *= kHeldFactor;
    family.files = where_they_act(code_, graph_, std::move(files));
    if (family.files.size() < kLeastFamily) return;
    family.glob = patterns_.glob_of(family.files);
    families_.push_back(std::move(family));
  }

  // Of the files, how many others hold, or call through an interface of its own. Who names most of
  // them calls them through what it holds.
  std::size_t count_held(const Files& files, const std::set<FileId>& hubs, bool own) const {
    Files apart(files);
    apart.insert(apart.end(), hubs.begin(), hubs.end());
    sort_distinct(apart);
    return static_cast<std::size_t>(std::ranges::count_if(files, [&](FileId file) {
      return is_field_elsewhere(code_, file, apart) ||
             (own && has_own_interface(code_, file, apart));
    }));
  }

  // Whether several others name the type: what has its methods serves them.
  bool is_passed_around(DeclarationRef type, const Files& files) const {
    const auto others = code_.files_naming(type, {index::Role::kType});
    return static_cast<std::size_t>(std::ranges::count_if(others, [&](FileId file) {
             return !std::ranges::binary_search(files, file);
           })) > kMostOtherNamers;
  }

  // An annotation that nobody looks for says something to a compiler or a reader.
  bool is_looked_up(DeclarationRef mark) const {
    if (!index::is_type(code_[mark].kind)) return true;  // a function is called with what bears it
    return std::ranges::any_of(code_.references_to(mark), [&](std::uint32_t at) {
      const IndexedReference& by = code_.reference(at);
      return by.role != index::Role::kAnnotates && by.source != mark.file &&
             code_.is_product(by.source);
    });
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
  TypeSigns signs_;
  const std::set<DeclarationRef>& errors_;
  std::vector<Family> families_;
};

}  // namespace

std::vector<Family> type_families(const FlowEvidence& evidence, const PathPatterns& patterns) {
  return TypeFamilies(evidence, patterns).find();
}

}  // namespace kestrix
