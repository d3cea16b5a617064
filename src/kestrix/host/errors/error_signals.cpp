#include "kestrix/host/errors/error_signals.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>

#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kDefines{"defines_errors", 1.0, "defines {} error", "defines {} errors",
                          "netbox, mockito"};
constexpr Signal kBase{"error_base", 2.0, "{} error type extends one of it",
                       "{} error types extend one of it", "BookStack, mockito"};
constexpr Signal kThrown{"errors_thrown", 1.2, "its errors are thrown in {} file",
                         "its errors are thrown in {} files", "BookStack, netbox"};
constexpr Signal kTold{"tells_errors_apart", 1.7, "tells {} error type apart",
                       "tells {} error types apart", "eShopOnWeb, flask"};
constexpr Signal kOthers{"tells_others_apart", 1.0,
                         "one function tells {} error from elsewhere apart",
                         "one function tells {} errors from elsewhere apart", "netbox, flask"};
constexpr Signal kMakes{"makes_errors", 1.2, "makes {} kind of error", "makes {} kinds of errors",
                        "mockito, crates.io"};
constexpr Signal kThrows{"throws_often", 0.5, "throws {} time", "throws {} times",
                         "polar, jellyfin"};
constexpr Signal kThrowsOthers{"throws_others", 0.4, "throws errors from elsewhere {} time",
                               "throws errors from elsewhere {} times", "nestjs, express"};
constexpr Signal kHandler{"error_handler", 7.0, "is a framework's handler of errors",
                          "is {} of a framework's handlers of errors", "BookStack, umami"};
constexpr Signal kNamed{"errors_named", 0.8, "its errors are named in {} file",
                        "its errors are named in {} files", "lazygit, crates.io"};

constexpr Signal kAnswers{"makes_answers", 0.9, "{} file answers requests through its functions",
                          "{} files answer requests through its functions", "umami, netbox"};
constexpr Signal kThrough{"answers_through", 0.6, "{} file answers requests by way of it",
                          "{} files answer requests by way of it", "umami, netbox"};
constexpr Signal kHelper{"makes_base_errors", 2.2, "{} file of base errors makes them with it",
                         "{} files of base errors make them with it", "mockito, polar"};
constexpr Signal kEnds{"ends_program", 0.8, "{} file ends the program through its functions",
                       "{} files end the program through its functions", "redis, lazygit"};

constexpr std::uint32_t kShort = 25;   // lines of a function that does one thing
constexpr std::size_t kAnswerers = 3;  // so many functions of a file make answers by design
constexpr double kBehind = 0.65;
constexpr std::size_t kManyUsers = 5;
constexpr Signal kLast{"ends_on_errors", 2.0, "{} function of it ends the program on errors",
                       "{} functions of it end the program on errors", "lazygit, caddy"};

constexpr std::array<std::string_view, 9> kHandling{"Handler",  "Handlers", "Filter",
                                                    "Mapper",   "Listener", "Middleware",
                                                    "Boundary", "Advice",   "Controller"};
constexpr std::size_t kHelpers = 4;  // one in so many who use it does so for errors
constexpr std::uint64_t kOften = 5;
constexpr std::size_t kSeveral = 2;  // so many types are told apart, or made, by design

// What is seen of one file.
struct ErrorUse {
  std::set<DeclarationRef> told;
  std::set<DeclarationRef> made;
  std::uint64_t throws = 0;
  std::uint64_t others_thrown = 0;
  std::vector<Place> told_at;
  std::vector<Place> made_at;
  std::map<std::uint32_t, std::vector<Place>> others;  // others' errors, by who tells them apart
};

bool is_callable(index::DeclarationKind kind) {
  return kind == index::DeclarationKind::kFunction || kind == index::DeclarationKind::kMethod;
}

class ErrorSignals {
 public:
  ErrorSignals(const CodeEvidence& evidence, const std::set<DeclarationRef>& types)
      : evidence_(evidence), types_(types) {}

  ScoreSheet sheet() {
    ScoreSheet sheet(evidence_);
    add_error_names(evidence_, types_, sheet);
    add_definitions(sheet);
    add_uses(sheet);
    add_handlers(sheet);
    add_helpers(sheet);
    add_last_resorts(sheet);
    add_short_functions(sheet, kAnswers, index::Known::kResponse, kAnswerers);
    add_short_functions(sheet, kEnds, index::Known::kEndsProgram, 1);
    return sheet;
  }

 private:
  void add_definitions(ScoreSheet& sheet) {
    std::map<FileId, std::vector<DeclarationRef>> by_file;
    for (const DeclarationRef type : types_) by_file[type.file].push_back(type);
    for (const auto& [file, types] : by_file) {
      if (!evidence_.is_product(file)) continue;
      std::vector<Place> places;
      std::set<DeclarationRef> subtypes;
      std::set<FileId> throwers;
      std::set<FileId> namers;
      for (const DeclarationRef type : types) {
        places.push_back(evidence_.place_of(type));
        for (const DeclarationRef subtype : evidence_.subtypes(type)) subtypes.insert(subtype);
        const auto thrown = evidence_.files_naming(type, {Role::kThrows, Role::kConstructs});
        throwers.insert(thrown.begin(), thrown.end());
        const auto named = evidence_.files_naming(type, kEveryRole);
        namers.insert(named.begin(), named.end());
      }
      const std::string names = names_and_lines(places);
      sheet.add(file, kDefines, types.size(), places, names);
      sheet.add(file, kBase, subtypes.size(), places_of(subtypes));
      sheet.add(file, kThrown, throwers.size());
      sheet.add(file, kNamed, namers.size());
    }
  }

  void add_uses(ScoreSheet& sheet) {
    std::map<FileId, ErrorUse> uses;
    const std::set<DeclarationRef> testers = holders_calling(index::Known::kErrorTest);
    for (const auto& to : evidence_.index().references()) {
      if (!evidence_.is_product(to.source)) continue;
      if (to.target == IndexedReference::kOutside) {
        if (to.within == 0 || !names_error(to.name)) continue;
        ErrorUse& use = uses[to.source];
        if (to.role == Role::kCatches) use.others[to.within].push_back(evidence_.place_of(to));
        if (to.role == Role::kThrows) use.others_thrown += to.count;
        continue;
      }
      if (to.declaration > 0) add_use(to, testers, uses);
    }
    for (auto& [file, use] : uses) {
      const std::string told = names_and_lines(use.told_at);
      const std::string made = names_and_lines(use.made_at);
      if (!use.told.empty()) sheet.add(file, kTold, use.told.size(), use.told_at, told);
      if (use.made.size() > kSeveral) sheet.add(file, kMakes, use.made.size(), use.made_at, made);
      if (use.throws >= kOften) sheet.add(file, kThrows, use.throws, use.made_at, made);
      // A product with errors of its own tells more through these.
      if (types_.size() < kSeveral && use.others_thrown >= kOften) {
        sheet.add(file, kThrowsOthers, use.others_thrown);
      }
      add_others(file, use, sheet);
    }
  }

  // Who calls something that is known.
  std::set<DeclarationRef> holders_calling(index::Known known) const {
    std::set<DeclarationRef> holders;
    for (const auto& to : evidence_.index().references()) {
      if (to.target != IndexedReference::kOutside || to.within == 0) continue;
      if (to.role != Role::kCalls && to.role != Role::kConstructs) continue;
      if (!evidence_.is_product(to.source)) continue;
      const auto language = evidence_.index().files()[to.source].language;
      if (known_as(language, known, to.name) != nullptr) holders.insert({to.source, to.within - 1});
    }
    return holders;
  }

  // A use of an error type, or of a member of one: its codes, what makes its values.
  void add_use(const IndexedReference& to, const std::set<DeclarationRef>& testers,
               std::map<FileId, ErrorUse>& uses) const {
    const DeclarationRef named{to.target, to.declaration - 1};
    const std::uint32_t around = evidence_[named].container;
    const bool member = around > 0 && types_.contains({to.target, around - 1});
    if (!member && !types_.contains(named)) return;
    if (to.source == to.target && (member || to.role != Role::kCatches)) return;
    const bool tests = to.within > 0 && testers.contains({to.source, to.within - 1});
    const bool mentions = to.role == Role::kType || to.role == Role::kUses;
    const bool told =
        to.role == Role::kCatches || to.role == Role::kLists || (tests && mentions && !member);
    const bool made =
        member ? to.role == Role::kCalls : to.role == Role::kThrows || to.role == Role::kConstructs;
    if (!told && !made) return;
    ErrorUse& use = uses[to.source];
    (told ? use.told : use.made).insert(named);
    if (to.role == Role::kThrows) use.throws += to.count;
    (told ? use.told_at : use.made_at).push_back(evidence_.place_of(to));
  }

  // The function that tells the most of others' errors apart.
  static void add_others(FileId file, ErrorUse& use, ScoreSheet& sheet) {
    std::vector<Place>* most = nullptr;
    for (auto& [within, places] : use.others) {
      if (most == nullptr || places.size() > most->size()) most = &places;
    }
    if (most == nullptr || most->size() < kSeveral) return;
    const std::string names = names_and_lines(*most);
    const std::size_t count = most->size();
    sheet.add(file, kOthers, count, std::move(*most), names);
  }

  // Libraries call what they ask about errors so.
  static bool handles_errors(std::string_view name) {
    name.remove_prefix(name.find_last_of("./:") + 1);  // 0 without one
    const auto ends = [name](std::string_view end) { return name.ends_with(end); };
    return names_error(name) && std::ranges::any_of(kHandling, ends);
  }

  // Functions that end the program after a look at an error.
  void add_last_resorts(ScoreSheet& sheet) const {
    const auto ending = holders_calling(index::Known::kEndsProgram);
    std::map<FileId, std::set<DeclarationRef>> resorts;
    for (const DeclarationRef holder : ending) {
      for (const IndexedReference& to : evidence_.index().references_from(holder.file)) {
        if (to.within != holder.place + 1 || to.target == IndexedReference::kOutside) continue;
        if (to.declaration == 0) continue;
        const DeclarationRef named{to.target, to.declaration - 1};
        const bool speaks =
            is_callable(evidence_[named].kind) && names_error(evidence_[named].name);
        if (types_.contains(named) || speaks) {
          resorts[holder.file].insert(holder);
        }
      }
    }
    for (const auto& [file, holders] : resorts) {
      const auto places = places_of(holders);
      sheet.add(file, kLast, holders.size(), places, names_and_lines(places));
    }
  }

  // What frameworks ask about errors, by base type, annotation or call.
  void add_handlers(ScoreSheet& sheet) {
    std::map<FileId, std::vector<Place>> handlers;
    for (const auto& to : evidence_.index().references()) {
      if (to.target != index::IndexedReference::kOutside || !evidence_.is_product(to.source))
        continue;
      const auto language = evidence_.index().files()[to.source].language;
      const bool known = known_as(language, index::Known::kErrorHandler, to.name) != nullptr;
      if (!known && !(kSubtyping.has(to.role) && handles_errors(to.name))) continue;
      handlers[to.source].push_back(evidence_.place_of(to));
    }
    for (auto& [file, places] : handlers) {
      const std::string names = names_and_lines(places);
      sheet.add(file, kHandler, 1, std::move(places), names);
    }
  }

  // Files of short functions around a call that is known, by who uses them.
  void add_short_functions(ScoreSheet& sheet, const Signal& signal, index::Known known,
                           std::size_t least) const {
    std::map<FileId, std::set<DeclarationRef>> functions;
    for (const DeclarationRef holder : holders_calling(known)) {
      const auto& declared = evidence_[holder];
      if (declared.kind != index::DeclarationKind::kFunction || !declared.exported) continue;
      if (declared.last_line <= declared.line + kShort) functions[holder.file].insert(holder);
    }
    for (const auto& [file, holders] : functions) {
      if (holders.size() < least) continue;
      std::set<FileId> users;
      for (const DeclarationRef function : holders) {
        const auto naming = evidence_.files_naming(function, {Role::kCalls});
        users.insert(naming.begin(), naming.end());
      }
      if (users.size() < kManyUsers) continue;
      const auto places = places_of(holders);
      sheet.add(file, signal, users.size(), places, names_and_lines(places));
      if (known == index::Known::kResponse) add_callers(file, holders, sheet);
    }
  }

  // Functions elsewhere that many call and that call those of `file`.
  void add_callers(FileId file, const std::set<DeclarationRef>& functions,
                   ScoreSheet& sheet) const {
    std::map<FileId, std::set<DeclarationRef>> callers;
    for (const DeclarationRef function : functions) {
      for (const std::uint32_t at : evidence_.references_to(function)) {
        const IndexedReference& to = evidence_.reference(at);
        if (to.source == file || to.within == 0 || !evidence_.is_product(to.source)) continue;
        callers[to.source].insert({to.source, to.within - 1});
      }
    }
    for (const auto& [caller, holders] : callers) {
      std::set<FileId> users;
      for (const DeclarationRef holder : holders) {
        const auto naming = evidence_.files_naming(holder, {Role::kCalls});
        users.insert(naming.begin(), naming.end());
      }
      if (users.size() < 2 * kManyUsers) continue;
      const auto places = places_of(holders);
      sheet.add(caller, kThrough, users.size(), places, names_and_lines(places));
    }
  }

  // What the central error types are made with.
  void add_helpers(ScoreSheet& sheet) const {
    std::set<FileId> bases;
    for (const DeclarationRef type : types_) {
      if (evidence_.subtypes(type).size() >= kSeveral) bases.insert(type.file);
    }
    std::map<FileId, std::set<FileId>> helped;
    for (const FileId base : bases) {
      for (const IndexedReference& to : evidence_.index().references_from(base)) {
        if (to.target == IndexedReference::kOutside || to.target == base) continue;
        if (to.role != Role::kCalls && to.role != Role::kConstructs) continue;
        if (evidence_.is_product(to.target)) helped[to.target].insert(base);
      }
    }
    for (const auto& [file, users] : helped) {
      const bool own = kHelpers * users.size() >= evidence_.product_dependents(file);
      if (own) sheet.add(file, kHelper, users.size());
    }
  }

  std::vector<Place> places_of(const std::set<DeclarationRef>& types) const {
    std::vector<Place> places;
    for (const DeclarationRef type : types) places.push_back(evidence_.place_of(type));
    return places;
  }

  const CodeEvidence& evidence_;
  const std::set<DeclarationRef>& types_;
};

}  // namespace

ErrorEvidence error_evidence_of(const CodeEvidence& evidence) {
  std::set<DeclarationRef> types = error_types(evidence);
  ScoreSheet sheet = ErrorSignals(evidence, types).sheet();
  ScoreSheet handling = sheet;
  std::set<FileId> defining;
  for (const DeclarationRef type : types) defining.insert(type.file);
  for (const FileId file : defining) handling.scale(file, kBehind);
  return {std::move(types), std::move(sheet), std::move(handling)};
}

}  // namespace kestrix
