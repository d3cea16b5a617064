#include <map>
#include <string>

#include "kestrix/host/errors/signal_groups.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;

constexpr Signal kAnswers{"makes_answers", 0.9, "{} file answers requests through its functions",
                          "{} files answer requests through its functions", "umami"};
constexpr Signal kThrough{"answers_through", 0.6, "{} file answers requests by way of it",
                          "{} files answer requests by way of it", "umami"};
constexpr Signal kEnds{"ends_program", 0.8, "{} file ends the program through its functions",
                       "{} files end the program through its functions", "redis, tmux"};
constexpr std::uint32_t kShort = 25;   // lines of a function that does one thing
constexpr std::size_t kAnswerers = 3;  // so many functions of a file make answers by design
constexpr std::size_t kManyUsers = 5;

class Endings {
 public:
  Endings(const ErrorView& errors, ScoreSheet& sheet)
      : code_(errors.code), errors_(errors), sheet_(sheet) {}

  void add() {
    add_short_functions(kAnswers, Known::kResponse, kAnswerers);
    add_short_functions(kEnds, Known::kEndsProgram, 1);
  }

 private:
  // Files of short functions around a call that is known, by who uses them.
  void add_short_functions(const Signal& signal, Known known, std::size_t least) {
    std::map<FileId, std::set<DeclarationRef>> functions;
    for (const DeclarationRef holder : errors_.holders_calling(known)) {
      const auto& declared = code_[holder];
      if (declared.kind != index::DeclarationKind::kFunction || !declared.exported) continue;
      if (declared.last_line <= declared.line + kShort) functions[holder.file].insert(holder);
    }
    for (const auto& [file, holders] : functions) {
      if (holders.size() < least) continue;
      const std::set<FileId> users = callers_of(holders);
      if (users.size() < kManyUsers) continue;
      const auto places = errors_.places_of(holders);
      sheet_.add(file, signal, users.size(), places, names_and_lines(places));
      if (known == Known::kResponse) add_callers(file, holders);
    }
  }

  // Functions elsewhere that many call and that call those of `file`.
  void add_callers(FileId file, const std::set<DeclarationRef>& functions) {
    std::map<FileId, std::set<DeclarationRef>> callers;
    for (const DeclarationRef function : functions) {
      for (const std::uint32_t at : code_.references_to(function)) {
        const IndexedReference& to = code_.reference(at);
        if (to.source == file || to.within == 0 || !code_.is_product(to.source)) continue;
        callers[to.source].insert({to.source, to.within - 1});
      }
    }
    for (const auto& [caller, holders] : callers) {
      const std::set<FileId> users = callers_of(holders);
      if (users.size() < 2 * kManyUsers) continue;
      const auto places = errors_.places_of(holders);
      sheet_.add(caller, kThrough, users.size(), places, names_and_lines(places));
    }
  }

  std::set<FileId> callers_of(const std::set<DeclarationRef>& functions) const {
    std::set<FileId> files;
    for (const DeclarationRef function : functions) {
      const auto naming = code_.files_naming(function, {Role::kCalls});
      files.insert(naming.begin(), naming.end());
    }
    return files;
  }

  const CodeEvidence& code_;
  const ErrorView& errors_;
  ScoreSheet& sheet_;
};

}  // namespace

void add_ending_signals(const ErrorView& errors, ScoreSheet& sheet) {
  Endings(errors, sheet).add();
}

}  // namespace kestrix
