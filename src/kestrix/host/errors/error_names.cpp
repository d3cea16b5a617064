#include <algorithm>
#include <array>
#include <map>

#include "kestrix/host/errors/signal_groups.h"
#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::Role;

constexpr Signal kSpeaks{"speaks_of_errors", 1.5, "{} file uses what it offers for errors",
                         "{} files use what it offers for errors", "tmux, polar"};
constexpr Signal kDevoted{"devoted_to_errors", 0.8, "{} of what it declares is about errors",
                          "{} of what it declares are about errors", "polar, eShopOnWeb"};

constexpr std::array<std::string_view, 10> kWords{"error",     "errors",     "err",     "errno",
                                                  "exception", "exceptions", "failure", "failures",
                                                  "panic",     "errs"};
// Of a type they say what happened.
constexpr std::array<std::string_view, 4> kVerbs{"abort", "fail", "failed", "fatal"};
// A type of such a name tells of an error once it is over.
constexpr std::array<std::string_view, 3> kEvents{"args", "event", "events"};
// Where there are the same functions for these, the one for errors only tells the user something.
constexpr std::array<std::string_view, 4> kOtherLevels{"info", "success", "warn", "warning"};
constexpr std::string_view kLevel = "error";
constexpr std::array<std::string_view, 2> kMacroWords{"assert", "abort"};
// What writes errors down makes none and handles none.
constexpr std::array<std::string_view, 4> kLogWords{"log", "logger", "logging", "logs"};

class Names {
 public:
  Names(const ErrorView& errors, ScoreSheet& sheet)
      : evidence_(errors.code), types_(errors.types), sheet_(sheet) {}

  void add() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file)) continue;
      add_named(file);
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

  // A type called like an error that extends something else.
  static bool is_no_error(const index::DeclarationView& row) {
    const bool called = row.name.ends_with("Error") || row.name.ends_with("Exception");
    const bool made = row.kind == DeclarationKind::kClass || row.kind == DeclarationKind::kRecord;
    return called && made && !row.bases().empty();
  }

  // Whether a file that has "tellError" has "tellInfo", too.
  static bool is_level(std::span<const index::DeclarationView> declared, std::string_view name) {
    const std::size_t at = name.size() < kLevel.size() ? 0 : name.size() - kLevel.size();
    if (!std::ranges::equal(name.substr(at), kLevel, {}, ascii::lower)) return false;
    const auto other = [&](const index::DeclarationView& row) {
      if (!is_callable(row.kind) || !row.name.starts_with(name.substr(0, at))) return false;
      const auto level = row.name.substr(at);
      return std::ranges::any_of(kOtherLevels, [level](std::string_view each) {
        return std::ranges::equal(level, each, {}, ascii::lower);
      });
    };
    return std::ranges::any_of(declared, other);
  }

  void add_named(FileId file) {
    const auto declared = evidence_.index().declarations(file);
    std::vector<std::pair<std::size_t, Place>> used;
    std::set<FileId> users;
    std::size_t tops = 0;
    std::size_t about = 0;
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const auto& row = declared[place];
      const DeclarationRef at{file, place};
      const bool speaks = is_type(row.kind) ? names_error(row.name) && !has_word(row.name, kEvents)
                                            : names_error(row.name) || has_word(row.name, kVerbs);
      if (row.container == 0) {
        ++tops;
        if (speaks || types_.contains(at)) ++about;
      }
      const bool macro = row.kind == DeclarationKind::kMacro && has_word(row.name, kMacroWords);
      if (!offers(row) || !(macro || speaks) || has_word(row.name, kLogWords)) continue;
      if (types_.contains(at) || is_no_error(row)) continue;
      if (is_callable(row.kind) && is_level(declared, row.name)) continue;
      const auto naming = evidence_.files_naming(at, kEveryRole);
      if (naming.empty()) continue;
      users.insert(naming.begin(), naming.end());
      used.emplace_back(naming.size(), evidence_.place_of(at));
    }
    if (users.empty()) return;
    if (2 * about >= tops) sheet_.add(file, kDevoted, about);
    std::ranges::stable_sort(used, std::ranges::greater(), &std::pair<std::size_t, Place>::first);
    std::vector<Place> places;
    for (auto& [count, place] : used) places.push_back(std::move(place));
    const std::string names = names_and_lines(places);
    sheet_.add(file, kSpeaks, users.size(), std::move(places), names);
  }

  const CodeEvidence& evidence_;
  const std::set<DeclarationRef>& types_;
  ScoreSheet& sheet_;
};

}  // namespace

bool names_error(std::string_view name) { return has_word(name, kWords); }

void add_name_signals(const ErrorView& errors, ScoreSheet& sheet) { Names(errors, sheet).add(); }

}  // namespace kestrix
