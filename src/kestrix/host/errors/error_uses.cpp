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

constexpr Signal kTold{"tells_errors_apart", 1.7, "tells {} error type apart",
                       "tells {} error types apart", "cli, jekyll"};
constexpr Signal kOthers{
    "tells_others_apart", 1.0, "one function tells {} error from elsewhere apart",
    "one function tells {} errors from elsewhere apart", "flask, nowinandroid"};
constexpr Signal kMakes{"makes_errors", 0.8, "makes {} kind of error", "makes {} kinds of errors",
                        "leveldb, scrapy"};
constexpr Signal kThrows{"throws_often", 0.5, "throws {} time", "throws {} times",
                         "yaml-cpp, firefly"};
constexpr Signal kThrowsOthers{"throws_others", 0.4, "throws errors from elsewhere {} time",
                               "throws errors from elsewhere {} times", "nestjs"};
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

class Uses {
 public:
  Uses(const ErrorView& errors, ScoreSheet& sheet)
      : code_(errors.code), errors_(errors), sheet_(sheet) {}

  void add() {
    testers_ = errors_.holders_calling(index::Known::kErrorTest);
    for (const IndexedReference& to : code_.index().references()) {
      if (!code_.is_product(to.source)) continue;
      if (to.target == IndexedReference::kOutside) {
        if (to.within > 0 && names_error(to.name)) add_other(to);
      } else if (to.declaration > 0) {
        add_use(to);
      }
    }
    for (auto& [file, use] : uses_) add_file(file, use);
  }

 private:
  void add_other(const IndexedReference& to) {
    ErrorUse& use = uses_[to.source];
    if (to.role == Role::kCatches) use.others[to.within].push_back(code_.place_of(to));
    if (to.role == Role::kThrows) use.others_thrown += to.count;
  }

  // A use of an error type, or of a member of one: its codes, what makes its values.
  void add_use(const IndexedReference& to) {
    const DeclarationRef named{to.target, to.declaration - 1};
    const std::uint32_t around = code_[named].container;
    const bool member = around > 0 && errors_.types.contains({to.target, around - 1});
    if (!member && !errors_.types.contains(named)) return;
    if (to.source == to.target && (member || to.role != Role::kCatches)) return;
    const bool tests = to.within > 0 && testers_.contains({to.source, to.within - 1});
    const bool mentions = to.role == Role::kType || to.role == Role::kUses;
    // What stands in a list of the whole file is handed on, whatever it is.
    const bool listed = to.role == Role::kLists && to.within > 0;
    const bool told = to.role == Role::kCatches || listed || (tests && mentions && !member);
    const bool made =
        member ? to.role == Role::kCalls : to.role == Role::kThrows || to.role == Role::kConstructs;
    if (!told && !made) return;
    ErrorUse& use = uses_[to.source];
    (told ? use.told : use.made).insert(named);
    if (to.role == Role::kThrows) use.throws += to.count;
    (told ? use.told_at : use.made_at).push_back(code_.place_of(to));
  }

  void add_file(FileId file, ErrorUse& use) {
    const std::string told = names_and_lines(use.told_at);
    const std::string made = names_and_lines(use.made_at);
    sheet_.add(file, kTold, use.told.size(), use.told_at, told);
    if (use.made.size() > kSeveral) sheet_.add(file, kMakes, use.made.size(), use.made_at, made);
    if (use.throws >= kOften) sheet_.add(file, kThrows, use.throws, use.made_at, made);
    // A product with errors of its own tells more through these.
    if (errors_.types.size() < kSeveral && use.others_thrown >= kOften) {
      sheet_.add(file, kThrowsOthers, use.others_thrown);
    }
    add_others(file, use);
  }

  // The function that tells the most of others' errors apart.
  void add_others(FileId file, ErrorUse& use) {
    std::vector<Place>* most = nullptr;
    for (auto& [within, places] : use.others) {
      if (most == nullptr || places.size() > most->size()) most = &places;
    }
    if (most == nullptr || most->size() < kSeveral) return;
    const std::string names = names_and_lines(*most);
    const std::size_t count = most->size();
    sheet_.add(file, kOthers, count, std::move(*most), names);
  }

  const CodeEvidence& code_;
  const ErrorView& errors_;
  ScoreSheet& sheet_;
  std::set<DeclarationRef> testers_;
  std::map<FileId, ErrorUse> uses_;
};

}  // namespace

void add_use_signals(const ErrorView& errors, ScoreSheet& sheet) { Uses(errors, sheet).add(); }

}  // namespace kestrix
