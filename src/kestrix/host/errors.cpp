#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/evidence/error_types.h"
#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {
namespace {

// Per production file, the exception classes that the detector counts.
std::map<std::string, std::vector<Place>, std::less<>> exception_types(
    const WikiGenerator& generator, const IndexEvidence& evidence) {
  const auto found = generator.repository().search_symbols(
      EXCEPTION_PATTERNS, {.kind = SymbolKind::kClass, .limit = SYMBOL_SCAN_LIMIT});
  std::map<std::string, std::vector<Place>, std::less<>> types;
  for (const Symbol& symbol : found.symbols) {
    Place place = evidence.place_of(symbol.id);
    if (generator.is_planned(place.path)) types[place.path].push_back(std::move(place));
  }
  for (auto& [path, places] : types) std::ranges::sort(places, {}, &Place::line);
  return types;
}

using index::DeclarationRef;
using index::FileId;
using index::Role;

constexpr Signal kDefines{"defines_errors", 1.0, "defines {} error", "defines {} errors",
                          "netbox, mockito"};
constexpr Signal kBase{"error_base", 2.0, "{} error type extends one of it",
                       "{} error types extend one of it", "BookStack, mockito"};
constexpr Signal kThrown{"errors_thrown", 1.2, "its errors are thrown in {} file",
                         "its errors are thrown in {} files", "BookStack, netbox"};
constexpr Signal kTold{"tells_errors_apart", 2.2, "tells {} error type apart",
                       "tells {} error types apart", "eShopOnWeb, flask"};
constexpr Signal kMakes{"makes_errors", 1.6, "makes {} kind of error", "makes {} kinds of errors",
                        "mockito, crates.io"};
constexpr Signal kHandler{"error_handler", 7.0, "is a framework's handler of errors",
                          "is {} of a framework's handlers of errors", "BookStack, umami"};
constexpr Signal kNamed{"errors_named", 0.8, "its errors are named in {} file",
                        "its errors are named in {} files", "lazygit, crates.io"};

constexpr Signal kAnswers{"makes_answers", 0.9, "{} file answers requests through its functions",
                          "{} files answer requests through its functions", "umami, netbox"};
constexpr Signal kEnds{"ends_program", 0.8, "{} file ends the program through its functions",
                       "{} files end the program through its functions", "redis, lazygit"};

constexpr double kLeastScore = 2.3;
constexpr double kLeastShare = 0.1;
constexpr std::uint32_t kShort = 25;   // lines of a function that does one thing
constexpr std::size_t kAnswerers = 3;  // so many functions of a file make answers by design
constexpr std::size_t kManyUsers = 5;
constexpr std::size_t kSeveral = 2;  // so many types are told apart, or made, by design

// What is seen of one file.
struct ErrorUse {
  std::set<DeclarationRef> told;
  std::set<DeclarationRef> made;
  std::vector<Place> told_at;
  std::vector<Place> made_at;
};

class ErrorSignals {
 public:
  explicit ErrorSignals(const CodeEvidence& evidence)
      : evidence_(evidence), types_(error_types(evidence)) {}

  ScoreSheet sheet() {
    ScoreSheet sheet(evidence_);
    add_definitions(sheet);
    add_uses(sheet);
    add_handlers(sheet);
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
    for (const auto& to : evidence_.index().references()) {
      if (to.declaration == 0 || !evidence_.is_product(to.source)) continue;
      const DeclarationRef type{to.target, to.declaration - 1};
      if (!types_.contains(type)) continue;
      ErrorUse& use = uses[to.source];
      if (to.role == Role::kCatches) {
        use.told.insert(type);
        use.told_at.push_back(evidence_.place_of(to));
      } else if (to.role == Role::kThrows || to.role == Role::kConstructs) {
        if (to.source == to.target) continue;
        use.made.insert(type);
        use.made_at.push_back(evidence_.place_of(to));
      }
    }
    for (auto& [file, use] : uses) {
      const std::string told = names_and_lines(use.told_at);
      const std::string made = names_and_lines(use.made_at);
      if (!use.told.empty()) sheet.add(file, kTold, use.told.size(), use.told_at, told);
      if (use.made.size() > kSeveral) sheet.add(file, kMakes, use.made.size(), use.made_at, made);
    }
  }

  // What frameworks ask about errors, by base type, annotation or call.
  void add_handlers(ScoreSheet& sheet) {
    std::map<FileId, std::vector<Place>> handlers;
    for (const auto& to : evidence_.index().references()) {
      if (to.target != index::IndexedReference::kOutside || !evidence_.is_product(to.source))
        continue;
      const auto language = evidence_.index().files()[to.source].language;
      if (known_as(language, index::Known::kErrorHandler, to.name) == nullptr) continue;
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
    for (const auto& to : evidence_.index().references()) {
      if (to.target != index::IndexedReference::kOutside || to.within == 0) continue;
      if (!evidence_.is_product(to.source)) continue;
      if (to.role != Role::kCalls && to.role != Role::kConstructs) continue;
      const DeclarationRef holder{to.source, to.within - 1};
      const auto& declared = evidence_[holder];
      if (declared.kind != index::DeclarationKind::kFunction || !declared.exported) continue;
      if (declared.last_line > declared.line + kShort) continue;
      const auto language = evidence_.index().files()[to.source].language;
      if (known_as(language, known, to.name) != nullptr) functions[to.source].insert(holder);
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
    }
  }

  std::vector<Place> places_of(const std::set<DeclarationRef>& types) const {
    std::vector<Place> places;
    for (const DeclarationRef type : types) places.push_back(evidence_.place_of(type));
    return places;
  }

  const CodeEvidence& evidence_;
  std::set<DeclarationRef> types_;
};

std::string defines(std::size_t count) {
  return fmt::format("defines {}", counted(count, "exception type", "exception types"));
}

}  // namespace

PageAnswer errors_answer(const WikiGenerator& generator) {
  const IndexEvidence evidence(generator.indexed());
  const auto types = exception_types(generator, evidence);
  PageAnswer answer;
  answer.has_material = generator._has_exceptions();
  for (std::string& path : generator._exception_files()) {
    const auto found = types.find(path);
    Pick pick{std::move(path), {}};
    if (found != types.end()) {
      pick.reasons.push_back(IndexEvidence::definitions(
          "exception_types", defines(found->second.size()), found->second));
    }
    add_counted(pick.reasons, evidence.used_by(pick.path));
    answer.files.push_back(std::move(pick));
  }
  answer.total = types.size();
  const CodeEvidence& code = generator.code_evidence();
  const ScoreSheet sheet = ErrorSignals(code).sheet();
  add_reasons(sheet, code, answer.files);
  answer.further =
      sheet.further(answer.files, room_for_further(answer.files.size()), kLeastScore, kLeastShare);
  finish(answer, *answer.has_material ? "no exception class in a production file, only in others"
                                      : "no class named …Error or …Exception");
  return answer;
}

std::string errors_why_not(const WikiGenerator& generator, std::string_view path) {
  const auto types = exception_types(generator, IndexEvidence(generator.indexed()));
  const auto found = types.find(path);
  if (found == types.end()) return "defines no class named …Error or …Exception";
  return defines(found->second.size()) + ", and the page's files as many or more";
}

}  // namespace kestrix
