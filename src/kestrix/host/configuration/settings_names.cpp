#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <span>

#include "kestrix/host/configuration/settings_signals.h"
#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::DeclarationView;
using index::FileId;
using index::Role;

constexpr Signal kNamed{"settings_named", 0.8, "{} file uses its settings",
                        "{} files use its settings", "scrapy, tmux"};
constexpr Signal kOptions{"options_named", 0.5, "{} file uses its options",
                          "{} files use its options", "Polly, caddy"};
constexpr Signal kFields{"settings_fields", 0.6, "{} member of settings", "{} members of settings",
                         "redis, jellyfin"};
constexpr Signal kOptionFields{"option_fields", 0.4, "{} member of options",
                               "{} members of options", "Polly, caddy"};
constexpr Signal kItself{"settings_itself", 1.6, "a type of it is called settings and no more", "",
                         "halo"};
constexpr Signal kDeclares{"declares_settings", 0.9, "declares settings by {} call",
                           "declares settings by {} calls", "redis, caddy"};
constexpr Signal kTable{"settings_table", 0.9, "a table of {} setting", "a table of {} settings",
                        "ripgrep, jellyfin"};
constexpr Signal kKind{"settings_kind", 1.0, "is settings by what it extends, as {} type",
                       "is settings by what it extends, as {} types", "Polly, solidus"};

constexpr std::array<std::string_view, 9> kTypeWords{
    "config",   "configs", "configuration", "configurations", "conf",
    "settings", "setting", "preferences",   "prefs"};
// Where a platform's files of settings are called so; elsewhere anything has properties.
constexpr std::array<std::string_view, 1> kPropertyWords{"properties"};
constexpr std::array<std::string_view, 3> kPropertyLanguages{"java", "kotlin", "scala"};
// What is handed to one function is called so, too.
constexpr std::array<std::string_view, 1> kOptionWords{"options"};
constexpr std::array<std::string_view, 16> kTails{
    "base",   "builder", "default",   "factory", "fetcher",  "impl",   "interface", "item",
    "loader", "manager", "parameter", "parser",  "provider", "reader", "service",   "store"};
constexpr std::array<std::string_view, 10> kValueWords{
    "config",      "configuration", "conf",  "settings", "setting",
    "preferences", "env",           "prefs", "options",  "option"};
constexpr std::array<std::string_view, 11> kTableWords{
    "config",  "configs", "configuration", "conf",  "settings",   "setting",
    "options", "option",  "opts",          "prefs", "preferences"};
// By themselves; with a word before them they are of anything.
constexpr std::array<std::string_view, 4> kWholeTables{"defaults", "flags", "parameters", "params"};

constexpr std::array<std::string_view, 6> kDeclaring{"register", "add",     "create",
                                                     "define",   "declare", "preference"};

constexpr std::uint64_t kManyCalls = 8;
constexpr std::size_t kShared = 2;
constexpr std::size_t kManyAlike = 20;  // of so many none stands out
constexpr std::uint32_t kSmallTable = 5;
constexpr std::uint32_t kFewFields = 3;
constexpr std::uint32_t kManyFields = 10;  // so many are settings, whoever uses them

bool is_options(const DeclarationView& row) {
  return ends_with_word(row.name, kOptionWords, kTails);
}

bool is_settings_type(const DeclarationView& row) {
  return is_type(row.kind) && (ends_with_word(row.name, kTypeWords, kTails) || is_options(row));
}

class Names {
 public:
  Names(const CodeEvidence& evidence, ScoreSheet& sheet) : evidence_(evidence), sheet_(sheet) {}

  void add() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file)) continue;
      look_at(file);
    }
    for (const DeclarationRef type : types_) {
      std::set<DeclarationRef> kinds;
      for (const DeclarationRef subtype : evidence_.subtypes(type)) {
        if (is_settings(subtype)) kinds.insert(subtype);
      }
      for (const DeclarationRef kind : kinds) {
        auto& most = kinds_[kind.file];
        most = std::max(most, kinds.size());
      }
    }
    for (const auto& [file, count] : declared_) {
      if (count >= kManyCalls) sheet_.add(file, kDeclares, count);
    }
    for (const auto& [file, alike] : kinds_) {
      if (evidence_.is_product(file)) sheet_.add(file, kKind, alike < kManyAlike ? alike + 1 : 1);
    }
  }

 private:
  static bool is_one_of(std::span<const std::string_view> words, std::string_view name) {
    return std::ranges::any_of(words, [name](std::string_view word) {
      return std::ranges::equal(name, word, {}, ascii::lower);
    });
  }

  bool is_settings(DeclarationRef at) const {
    const DeclarationView& row = evidence_[at];
    const auto language = evidence_.index().files()[at.file].language;
    return is_settings_type(row) ||
           (row.kind == DeclarationKind::kModule && is_one_of(kTypeWords, row.name)) ||
           (is_type(row.kind) && ends_with_word(row.name, kPropertyWords, kTails) &&
            std::ranges::find(kPropertyLanguages, language) != kPropertyLanguages.end());
  }

  // "Config", "Options": without a word of what for.
  static bool is_itself(const DeclarationView& row) {
    return is_type(row.kind) &&
           (is_one_of(kTypeWords, row.name) || is_one_of(kOptionWords, row.name));
  }

  static bool is_table(const DeclarationView& row) {
    const bool value = row.kind == DeclarationKind::kConstant ||
                       row.kind == DeclarationKind::kVariable ||
                       row.kind == DeclarationKind::kField;
    return value && row.size >= kSmallTable &&
           (has_word(row.name, kTableWords) || is_one_of(kWholeTables, row.name));
  }

  // "registerOption", "createBoolConfig".
  static bool declares_settings(const DeclarationView& row) {
    const bool called = row.kind == DeclarationKind::kFunction ||
                        row.kind == DeclarationKind::kMethod || row.kind == DeclarationKind::kMacro;
    return called && has_word(row.name, kTableWords) && has_word(row.name, kDeclaring);
  }

  void count_calls(DeclarationRef declaring) {
    for (const std::uint32_t at : evidence_.references_to(declaring)) {
      const auto& to = evidence_.reference(at);
      if (to.role == Role::kCalls && evidence_.is_product(to.source)) {
        declared_[to.source] += to.count;
      }
    }
  }

  bool is_offer(DeclarationRef at) const {
    if (is_settings(at)) return true;
    const DeclarationView& row = evidence_[at];
    const bool value = row.container == 0 && (row.kind == DeclarationKind::kFunction ||
                                              row.kind == DeclarationKind::kConstant ||
                                              row.kind == DeclarationKind::kVariable);
    return value && has_word(row.name, kValueWords);
  }

  void look_at(FileId file) {
    const auto declared = evidence_.index().declarations(file);
    std::set<FileId> users;
    std::vector<std::pair<std::size_t, Place>> used;
    std::vector<Place> tables;
    std::uint32_t entries = 0;
    std::uint32_t fields = 0;
    std::uint32_t most = 0;
    bool options = true;
    bool itself = false;
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const DeclarationView& row = declared[place];
      const DeclarationRef at{file, place};
      if (is_settings(at)) {
        types_.push_back(at);
        if (!is_options(row)) most = std::max(most, row.fields);
      }
      if (declares_settings(row)) count_calls(at);
      if (is_table(row)) {
        tables.push_back(evidence_.place_of(at));
        entries += row.size;
      }
      if (row.container > 0 && is_settings({file, row.container - 1})) {
        const auto naming = evidence_.files_naming(at, kEveryRole);
        users.insert(naming.begin(), naming.end());
        const DeclarationView& around = declared[row.container - 1];
        if (is_type(row.kind)) fields += row.fields;  // a group of settings
        if (around.kind == DeclarationKind::kModule && !naming.empty()) ++fields;
        options = options && is_options(around);
      }
      if (!is_offer(at)) continue;
      const auto naming = evidence_.files_naming(at, kEveryRole);
      if (naming.empty()) continue;
      users.insert(naming.begin(), naming.end());
      used.emplace_back(naming.size(), evidence_.place_of(at));
      options = options && is_options(row) && row.name.size() > kOptionWords[0].size();
      itself = itself || is_itself(row);
      if (is_type(row.kind)) fields += row.fields + row.abstract_methods;
    }
    const std::string named = names_and_lines(tables);
    sheet_.add(file, kTable, entries, std::move(tables), named);
    if (users.size() < kShared) {
      if (most >= kManyFields) sheet_.add(file, kFields, most);
      return;
    }
    std::ranges::stable_sort(used, std::ranges::greater(), &std::pair<std::size_t, Place>::first);
    std::vector<Place> places;
    for (auto& [count, place] : used) places.push_back(std::move(place));
    const std::string names = names_and_lines(places);
    sheet_.add(file, options ? kOptions : kNamed, users.size(), std::move(places), names);
    if (itself) sheet_.add(file, kItself, 1);
    if (fields >= kFewFields) sheet_.add(file, options ? kOptionFields : kFields, fields);
  }

  const CodeEvidence& evidence_;
  ScoreSheet& sheet_;
  std::vector<DeclarationRef> types_;
  std::map<FileId, std::uint64_t> declared_;  // calls that declare settings
  std::map<FileId, std::size_t> kinds_;       // how many are alike, at most
};

}  // namespace

void add_settings_names(const CodeEvidence& evidence, ScoreSheet& sheet) {
  Names(evidence, sheet).add();
}

}  // namespace kestrix
