#include <algorithm>
#include <array>
#include <map>

#include "kestrix/host/errors/error_signals.h"
#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;

constexpr Signal kSpeaks{"speaks_of_errors", 1.0, "{} file uses what it offers for errors",
                         "{} files use what it offers for errors", "flask, umami"};
constexpr Signal kDevoted{"devoted_to_errors", 1.5, "{} of what it declares is about errors",
                          "{} of what it declares are about errors", "lazygit, netbox"};
constexpr Signal kHub{"handles_for_many", 0.4, "handles errors for {} file",
                      "handles errors for {} files", "umami, polar"};
constexpr Signal kHook{"error_hook", 5.0, "is called by a framework with errors",
                       "is called by a framework with errors in {} ways", "netbox, umami"};

constexpr std::array<std::string_view, 10> kWords{"error",     "errors",     "err",     "errno",
                                                  "exception", "exceptions", "failure", "failures",
                                                  "panic",     "errs"};
constexpr std::array<std::string_view, 2> kMacroWords{"assert", "abort"};
constexpr std::size_t kMany = 20;

class Names {
 public:
  Names(const CodeEvidence& evidence, const std::set<DeclarationRef>& types, ScoreSheet& sheet)
      : evidence_(evidence), types_(types), sheet_(sheet) {}

  void add() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file)) continue;
      add_named(file);
      add_hooks(file);
    }
    for (auto& [file, places] : hooks_) {
      const std::string names = names_and_lines(places);
      const std::size_t count = places.size();
      sheet_.add(file, kHook, count, std::move(places), names);
    }
  }

 private:
  static bool offers(const index::DeclarationView& declared) {
    switch (declared.kind) {
      case DeclarationKind::kFunction:
      case DeclarationKind::kMethod:
        return true;
      case DeclarationKind::kConstant:
      case DeclarationKind::kVariable:
      case DeclarationKind::kMember:
        return declared.container == 0;
      case DeclarationKind::kMacro:
        return true;
      default:
        return is_type(declared.kind);
    }
  }

  static bool is_callable(DeclarationKind kind) {
    return kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
  }

  // A type called like an error that extends something else.
  static bool is_no_error(const index::DeclarationView& row) {
    const bool called = row.name.ends_with("Error") || row.name.ends_with("Exception");
    const bool made = row.kind == DeclarationKind::kClass || row.kind == DeclarationKind::kRecord;
    return called && made && !row.bases().empty();
  }

  void add_named(FileId file) {
    const auto declared = evidence_.index().declarations(file);
    std::vector<std::pair<std::size_t, Place>> used;
    std::set<FileId> users;
    std::size_t tops = 0;
    std::size_t about = 0;
    bool inner = false;
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const auto& row = declared[place];
      const DeclarationRef at{file, place};
      const bool speaks = names_error(row.name);
      if (row.container == 0) {
        ++tops;
        if (speaks || types_.contains(at)) ++about;
      }
      inner = inner || (speaks && !row.exported && is_callable(row.kind));
      const bool macro = row.kind == DeclarationKind::kMacro && has_word(row.name, kMacroWords);
      if (!offers(row) || !(macro || speaks)) continue;
      if (types_.contains(at) || is_no_error(row)) continue;
      const auto naming = evidence_.files_naming(at, kEveryRole);
      if (naming.empty()) continue;
      users.insert(naming.begin(), naming.end());
      used.emplace_back(naming.size(), evidence_.place_of(at));
    }
    const std::uint32_t dependents = evidence_.product_dependents(file);
    if (inner && users.empty() && dependents >= kMany) sheet_.add(file, kHub, dependents);
    if (users.empty()) return;
    if (2 * about >= tops) sheet_.add(file, kDevoted, about);
    std::ranges::stable_sort(used, std::ranges::greater(), &std::pair<std::size_t, Place>::first);
    std::vector<Place> places;
    for (auto& [count, place] : used) places.push_back(std::move(place));
    const std::string names = names_and_lines(places);
    sheet_.add(file, kSpeaks, users.size(), std::move(places), names);
  }

  // Methods, and values whose names a framework looks for: these say whom it calls.
  void add_hooks(FileId file) {
    const auto language = evidence_.index().files()[file].language;
    const auto declared = evidence_.index().declarations(file);
    std::set<std::uint32_t> values;
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const auto& row = declared[place];
      if (known_as(language, Known::kErrorHook, row.name) == nullptr) continue;
      if (row.kind == DeclarationKind::kMethod || row.kind == DeclarationKind::kFunction) {
        hooks_[file].push_back(evidence_.place_of(DeclarationRef{file, place}));
      } else {
        values.insert(place + 1);
      }
    }
    if (values.empty()) return;
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.target == IndexedReference::kOutside || to.target == file) continue;
      if (values.contains(to.within) && evidence_.is_product(to.target)) {
        hooks_[to.target].push_back(evidence_.place_of(to));
      }
    }
  }

  const CodeEvidence& evidence_;
  const std::set<DeclarationRef>& types_;
  ScoreSheet& sheet_;
  std::map<FileId, std::vector<Place>> hooks_;
};

}  // namespace

bool names_error(std::string_view name) { return has_word(name, kWords); }

void add_error_names(const CodeEvidence& evidence, const std::set<DeclarationRef>& types,
                     ScoreSheet& sheet) {
  Names(evidence, types, sheet).add();
}

}  // namespace kestrix
