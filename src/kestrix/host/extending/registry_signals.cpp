#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/evidence/typed_values.h"
#include "kestrix/host/extending/signal_groups.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kTable{"table_of_declarations", 1.3, "its table lists what {} file declares",
                        "its tables list what {} files declare", "umami, BookStack"};
constexpr Signal kFilled{"filled_in_tables", 1.4, "{} file fills a table of its type",
                         "{} files fill tables of its types", "tmux, redis"};
constexpr Signal kOnLoad{"called_on_load", 1.6, "{} file calls it when it is loaded",
                         "{} files call it when they are loaded", "caddy, jekyll"};
constexpr Signal kOwnTable{"table_of_its_own", 1.2, "its table lists {} of its declarations",
                           "its tables list {} of its declarations", "tmux, ripgrep"};

// Where little else shows, one extends a product by the records of its longest tables.
constexpr Signal kRecords{"table_of_records", 0.3, "its table has {} record",
                          "its table has {} records", "umami, ripgrep"};

constexpr std::size_t kSeveral = 3;
constexpr std::uint32_t kManyRecords = 12;
constexpr std::uint32_t kMostRecords = 64;  // more tell nothing more
constexpr std::size_t kLongestTables = 4;
constexpr std::size_t kFolders = 2;
constexpr std::size_t kOwnRows = 5;

class RegistrySignals {
 public:
  RegistrySignals(const CodeEvidence& evidence, ScoreSheet& sheet)
      : evidence_(evidence), sheet_(sheet) {}

  // One pass over what each file names.
  void add() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file)) continue;
      look_at(file);
      look_at_records(file);
    }
    for (const auto& [file, users] : filled_) {
      if (users.size() >= kSeveral) sheet_.add(file, kFilled, users.size());
    }
    add_users();
    add_longest();
  }

 private:
  struct Longest {
    std::uint32_t records;
    DeclarationRef table;
  };

  struct Users {
    std::set<FileId> files;
    std::set<DeclarationRef> declared;
    std::vector<Place> at;
  };

  void add_users() {
    for (const auto& [file, users] : on_load_) {
      if (users.files.size() < kSeveral) continue;
      std::set<std::string_view> folders;
      for (const FileId user : users.files) {
        folders.insert(index::folder_of(evidence_.path(user)));
      }
      if (folders.size() < kFolders) continue;
      sheet_.add(file, kOnLoad, users.files.size(), users.at, names_and_lines(users.at));
    }
  }

  void add_longest() {
    std::ranges::sort(records_, {}, [](const Longest& each) {
      return std::pair(-static_cast<std::int64_t>(each.records), each.table);
    });
    if (records_.size() > kLongestTables) records_.resize(kLongestTables);
    for (const auto& [records, table] : records_) {
      std::vector<Place> places{evidence_.place_of(table)};
      const std::string names = names_and_lines(places);
      sheet_.add(table.file, kRecords, std::min(records, kMostRecords), std::move(places), names);
    }
  }

  // The longest table of a file.
  void look_at_records(FileId file) {
    Longest longest{kManyRecords - 1, {file, 0}};
    const auto rows = evidence_.index().declarations(file);
    for (std::uint32_t at = 0; at < rows.size(); ++at) {
      const bool table = rows[at].shape == index::ValueShape::kRecords && is_table(file, at + 1);
      if (table && rows[at].size > longest.records) longest = {rows[at].size, {file, at}};
    }
    if (longest.records >= kManyRecords) records_.push_back(longest);
  }

  void note(FileId user, DeclarationRef function) {
    Users& users = on_load_[function.file];
    users.files.insert(user);
    if (users.declared.insert(function).second) users.at.push_back(evidence_.place_of(function));
  }

  void look_at(FileId file) {
    std::map<std::uint32_t, std::set<FileId>> tables;
    std::map<std::uint32_t, std::set<std::uint32_t>> own;
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.target == IndexedReference::kOutside || to.declaration == 0) continue;
      if (to.role == Role::kType && to.target != file) look_at_type(to);
      if (to.role == Role::kCalls && to.target != file) look_at_call(to);
      if (to.role == Role::kLists && to.within > 0 && is_table(file, to.within)) {
        if (to.target != file) {
          tables[to.within].insert(to.target);
        } else if (is_code(DeclarationRef{to.target, to.declaration - 1})) {
          own[to.within].insert(to.declaration);
        }
      }
    }
    add_tables(file, tables, kTable, kSeveral);
    add_tables(file, own, kOwnTable, kOwnRows);
  }

  // A type of which a value at the top of the file is a table.
  void look_at_type(const IndexedReference& to) {
    const DeclarationRef type{to.target, to.declaration - 1};
    const auto value = value_of_type(evidence_, to);
    if (value && evidence_[*value].size > 1 && evidence_[type].fields > 1 &&
        evidence_.is_product(to.target)) {
      filled_[to.target].insert(to.source);
    }
  }

  bool is_table(FileId file, std::uint32_t within) const {
    const auto& holder = evidence_[DeclarationRef{file, within - 1}];
    return (holder.kind == DeclarationKind::kConstant ||
            holder.kind == DeclarationKind::kVariable || holder.kind == DeclarationKind::kField) &&
           (holder.shape == index::ValueShape::kNames ||
            holder.shape == index::ValueShape::kRecords);
  }

  void look_at_call(const IndexedReference& to) {
    const DeclarationRef function{to.target, to.declaration - 1};
    const DeclarationKind kind = evidence_[function].kind;
    const bool callable = kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
    if (callable && evidence_.is_product(to.target) && runs_on_load(to)) note(to.source, function);
  }

  // A call outside of every declaration; Go's init functions are none.
  bool runs_on_load(const IndexedReference& to) const {
    if (to.within != 0) return false;
    // Elsewhere functions are mostly values: what stands in none may well stand in one.
    const std::string_view language = evidence_.index().files()[to.source].language;
    return language == "go" || language == "python" || language == "ruby" || language == "php";
  }

  bool is_code(DeclarationRef at) const {
    const DeclarationKind kind = evidence_[at].kind;
    return is_type(kind) || kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
  }

  template <class Row>
  void add_tables(FileId file, const std::map<std::uint32_t, std::set<Row>>& tables,
                  const Signal& signal, std::size_t least) {
    std::set<Row> listed;
    std::vector<Place> places;
    for (const auto& [within, rows] : tables) {
      if (rows.size() < least) continue;
      listed.insert(rows.begin(), rows.end());
      places.push_back(evidence_.place_of(DeclarationRef{file, within - 1}));
    }
    const std::string names = names_and_lines(places);
    sheet_.add(file, signal, listed.size(), std::move(places), names);
  }

  const CodeEvidence& evidence_;
  ScoreSheet& sheet_;
  std::map<FileId, std::set<FileId>> filled_;  // by the file of the type
  std::vector<Longest> records_;
  std::map<FileId, Users> on_load_;  // by the file of the function
};

}  // namespace

void add_registry_signals(const CodeEvidence& evidence, ScoreSheet& sheet) {
  RegistrySignals(evidence, sheet).add();
}

}  // namespace kestrix
