#include <algorithm>
#include <map>
#include <string>

#include "kestrix/host/errors/signal_groups.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kDefines{"defines_errors", 1.0, "defines {} error", "defines {} errors",
                          "cli, ripgrep"};
constexpr Signal kBase{"error_base", 2.0, "{} error type elsewhere extends one of it",
                       "{} error types elsewhere extend one of it", "halo, Polly"};
constexpr Signal kThrown{"errors_thrown", 1.0, "its errors are thrown in {} file",
                         "its errors are thrown in {} files", "crates.io, BookStack"};
constexpr Signal kNamed{"errors_named", 1.0, "its errors are named in {} file",
                        "its errors are named in {} files", "cli, halo"};
constexpr Signal kAnswers{"answers_itself", 2.5, "{} error says how a request is answered with it",
                          "{} errors say how a request is answered with them", "BookStack"};
constexpr Signal kHelper{"makes_base_errors", 2.2, "{} file of base errors makes them with it",
                         "{} files of base errors make them with it", "mockito"};

constexpr std::size_t kHelpers = 4;     // one in so many who use it does so for errors
constexpr std::ptrdiff_t kSeveral = 2;  // so many errors extend a base

class Definitions {
 public:
  Definitions(const ErrorView& errors, ScoreSheet& sheet) : errors_(errors), sheet_(sheet) {}

  void add() {
    std::map<FileId, std::vector<DeclarationRef>> by_file;
    for (const DeclarationRef type : errors_.types) by_file[type.file].push_back(type);
    for (const auto& [file, types] : by_file) {
      if (errors_.code.is_product(file)) add_file(file, types);
    }
    add_helpers();
  }

 private:
  void add_file(FileId file, const std::vector<DeclarationRef>& types) {
    std::vector<Place> places;
    std::set<DeclarationRef> subtypes;
    std::set<FileId> throwers;
    std::set<FileId> namers;
    for (const DeclarationRef type : types) {
      places.push_back(errors_.code.place_of(type));
      // A family of errors in one file says nothing of who else needs its base.
      for (const DeclarationRef subtype : errors_.code.subtypes(type)) {
        if (subtype.file != file) subtypes.insert(subtype);
      }
      const auto thrown = errors_.code.files_naming(type, {Role::kThrows, Role::kConstructs});
      throwers.insert(thrown.begin(), thrown.end());
      const auto named = errors_.code.files_naming(type, kEveryRole);
      namers.insert(named.begin(), named.end());
    }
    const std::string names = names_and_lines(places);
    sheet_.add(file, kDefines, types.size(), places, names);
    sheet_.add(file, kBase, subtypes.size(), errors_.places_of(subtypes));
    sheet_.add(file, kThrown, throwers.size());
    sheet_.add(file, kNamed, namers.size());
    add_answering(file);
  }

  // Errors that are what answers a request, by what they extend or bear.
  void add_answering(FileId file) {
    const auto language = errors_.code.index().files()[file].language;
    std::set<DeclarationRef> answering;
    for (const IndexedReference& to : errors_.code.index().references_from(file)) {
      if (to.target != IndexedReference::kOutside || to.within == 0) continue;
      if (!kSubtyping.has(to.role) && to.role != Role::kAnnotates) continue;
      const DeclarationRef holder{file, to.within - 1};
      if (!errors_.types.contains(holder)) continue;
      if (known_as(language, index::Known::kResponse, to.name) != nullptr) answering.insert(holder);
    }
    const auto places = errors_.places_of(answering);
    sheet_.add(file, kAnswers, answering.size(), places, names_and_lines(places));
  }

  // What the central error types are made with.
  void add_helpers() {
    std::set<FileId> bases;
    for (const DeclarationRef type : errors_.types) {
      const auto elsewhere = [type](DeclarationRef subtype) { return subtype.file != type.file; };
      const auto subtypes = errors_.code.subtypes(type);
      if (std::ranges::count_if(subtypes, elsewhere) >= kSeveral) bases.insert(type.file);
    }
    std::map<FileId, std::set<FileId>> helped;
    for (const FileId base : bases) {
      for (const IndexedReference& to : errors_.code.index().references_from(base)) {
        if (to.target == IndexedReference::kOutside || to.target == base) continue;
        if (to.role != Role::kCalls && to.role != Role::kConstructs) continue;
        if (errors_.code.is_product(to.target)) helped[to.target].insert(base);
      }
    }
    for (const auto& [file, users] : helped) {
      const bool own = kHelpers * users.size() >= errors_.code.product_dependents(file);
      if (own) sheet_.add(file, kHelper, users.size());
    }
  }

  const ErrorView& errors_;
  ScoreSheet& sheet_;
};

}  // namespace

void add_definition_signals(const ErrorView& errors, ScoreSheet& sheet) {
  Definitions(errors, sheet).add();
}

}  // namespace kestrix
