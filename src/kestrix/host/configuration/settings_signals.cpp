#include "kestrix/host/configuration/settings_signals.h"

#include <algorithm>
#include <array>
#include <set>

#include "kestrix/host/configuration/read_keys.h"
#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/path_glob.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/languages/language.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;

constexpr Signal kReads{"reads_settings", 1.6, "reads {} setting", "reads {} settings",
                        "umami, crates.io"};
constexpr Signal kReader{"settings_reader", 1.5, "{} file reads settings through its functions",
                         "{} files read settings through its functions", "crates.io, netbox"};
constexpr Signal kReadsThrough{"reads_through", 1.2, "reads settings through {} function",
                               "reads settings through functions, {} times", "crates.io, netbox"};
constexpr Signal kBound{"settings_type", 3.0, "{} type of it is filled from settings",
                        "{} types of it are filled from settings", "eShopOnWeb, crates.io"};
constexpr Signal kCalls{"settings_calls", 1.2, "takes in settings: {} call",
                        "takes in settings: {} calls", "eShopOnWeb, lazygit"};
constexpr Signal kAccess{"settings_access", 0.6, "{} file asks it for settings",
                         "{} files ask it for settings", "netbox, BookStack"};
constexpr Signal kKeys{"keys_read", 1.7, "holds {} key that the code reads",
                       "holds {} keys that the code reads", "crates.io, BookStack"};
constexpr Signal kPlace{"settings_path", 4.5, "is where a framework looks for settings", "",
                        "eShopOnWeb, umami"};
constexpr Signal kTemplate{"environment_template", 0.9, "a template of {} variable",
                           "a template of {} variables", "BookStack, crates.io"};

constexpr Signal kSample{"settings_sample", 4.0, "is a sample to be copied", "",
                         "netbox, lobsters"};
constexpr Signal kDirective{"directives", 0.8, "holds {} directive", "holds {} directives",
                            "redis, nowinandroid"};

constexpr std::array<std::string_view, 4> kTextFolders{"locales/", "locale/", "lang/", "i18n/"};
constexpr std::size_t kDirectives = 10;
constexpr std::ptrdiff_t kDeepest = 2;
constexpr std::size_t kShared = 3;  // so many files that ask make an accessor

bool is_callable(DeclarationKind kind) {
  return kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
}

class Signals {
 public:
  explicit Signals(const CodeEvidence& evidence)
      : evidence_(evidence), keys_(evidence), sheet_(evidence) {}

  ScoreSheet sheet() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (evidence_.is_product(file)) look_at(file);
    }
    add_settings_files();
    add_reads();
    add_readers();
    add_types();
    add_places();
    add_settings_names(evidence_, sheet_);
    take_texts_off();
    add_settings_company(evidence_, sheet_);
    return std::move(sheet_);
  }

 private:
  // Whether a name from outside is a call that the language's rules or a framework know to read
  // settings.
  static bool reads_settings(std::string_view language, std::string_view name) {
    if (known_as(language, Known::kSettingsCall, name) != nullptr) return true;
    const index::Language* known = index::language_named(language);
    if (known == nullptr || known->code == nullptr) return false;
    return std::ranges::any_of(known->code->calls, [name](const index::CallRule& call) {
      return call.role == Role::kReads && name.ends_with(call.callee) &&
             (name.size() == call.callee.size() ||
              name[name.size() - call.callee.size() - 1] == '.');
    });
  }

  void look_at(FileId file) {
    const auto language = evidence_.index().files()[file].language;
    std::vector<Place> calls;
    std::set<std::uint32_t> lines;
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.target != IndexedReference::kOutside) continue;
      if (to.role == Role::kReads && to.within > 0) reads_fixed_.insert({file, to.within - 1});
      if (to.role == Role::kExtends || to.role == Role::kImplements ||
          to.role == Role::kAnnotates) {
        if (to.within > 0 && known_as(language, Known::kSettingsBase, to.name) != nullptr) {
          types_.insert({file, to.within - 1});
        }
      }
      if (to.role != Role::kCalls || !reads_settings(language, to.name)) continue;
      calls.push_back(evidence_.place_of(to));
      lines.insert(to.line);
      if (to.within > 0 && is_callable(evidence_[DeclarationRef{file, to.within - 1}].kind)) {
        readers_.insert({file, to.within - 1});
      }
    }
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      const bool handed = to.role == Role::kLists || to.role == Role::kType;
      if (!handed || to.declaration == 0 || !lines.contains(to.line)) continue;
      const DeclarationRef type{to.target, to.declaration - 1};
      if (is_type(evidence_[type].kind)) types_.insert(type);
    }
    const std::string names = names_and_lines(calls);
    const std::size_t count = calls.size();
    if (!keys_.by_file().contains(file)) sheet_.add(file, kCalls, count, std::move(calls), names);
  }

  void add_reads() {
    for (const auto& [file, places] : keys_.by_file()) {
      std::vector<Place> own;
      std::ranges::copy_if(places, std::back_inserter(own),
                           [this](const Place& place) { return !is_held(place.name); });
      const std::string names = names_and_lines(own);
      const std::size_t count = own.size();
      sheet_.add(file, kReads, count, std::move(own), names);
      if (places.size() >= kShared) add_access(file);
    }
  }

  // Whether the setting stands in one of the product's own files, which is what reads it.
  bool is_held(std::string_view key) const {
    const std::size_t dot = key.find('.');
    return dot != std::string_view::npos && holders_.contains(key.substr(0, dot));
  }

  // Who names what a file of settings declares.
  void add_access(FileId file) {
    if (!accessed_.insert(file).second) return;
    std::set<FileId> users;
    for (const std::uint32_t place : readers_in(file)) {
      const auto naming = evidence_.files_naming(DeclarationRef{file, place}, kEveryRole);
      users.insert(naming.begin(), naming.end());
    }
    if (users.size() >= kShared) sheet_.add(file, kAccess, users.size());
  }

  // The places of what reads settings in a file, of what holds that, and of types filled from them.
  std::set<std::uint32_t> readers_in(FileId file) const {
    std::set<std::uint32_t> places;
    const auto declared = evidence_.index().declarations(file);
    for (const IndexedReference& to : evidence_.index().references_from(file)) {
      if (to.role != Role::kReads) continue;
      for (std::uint32_t at = to.within; at > 0; at = declared[at - 1].container) {
        places.insert(at - 1);
      }
    }
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const DeclarationRef at{file, place};
      if (types_.contains(at) || readers_.contains(at)) places.insert(place);
    }
    return places;
  }

  // Functions that are told the name of what they read.
  void add_readers() {
    std::map<FileId, std::set<FileId>> users;
    std::map<FileId, std::uint64_t> calls;
    for (const DeclarationRef reader : readers_) {
      for (const std::uint32_t at : evidence_.references_to(reader)) {
        const IndexedReference& to = evidence_.reference(at);
        if (to.role != Role::kCalls || to.source == reader.file) continue;
        if (!evidence_.is_product(to.source)) continue;
        if (!reads_fixed_.contains(reader)) users[reader.file].insert(to.source);
        calls[to.source] += to.count;
      }
    }
    for (const auto& [file, readers] : users) {
      if (readers.size() >= kShared) sheet_.add(file, kReader, readers.size());
    }
    for (const auto& [file, count] : calls) {
      if (count > 1) sheet_.add(file, kReadsThrough, count);
    }
  }

  void add_types() {
    std::map<FileId, std::vector<Place>> by_file;
    for (const DeclarationRef type : types_) {
      if (evidence_.is_product(type.file)) by_file[type.file].push_back(evidence_.place_of(type));
    }
    for (auto& [file, places] : by_file) {
      const std::string names = names_and_lines(places);
      const std::size_t count = places.size();
      sheet_.add(file, kBound, count, std::move(places), names);
      add_access(file);
    }
  }

  void add_settings_files() {
    const auto& index = evidence_.index();
    index.for_each_noted([&](FileId file) {
      const index::FileNotes notes = index.notes(file);
      if (notes.keys.empty() || !evidence_.roles(file).empty()) return;
      std::vector<Place> places;
      for (const std::string& key : notes.keys) {
        if (keys_.reads(key)) places.push_back({std::string(evidence_.path(file)), 0, key});
      }
      std::string names;
      for (const Place& place : places) {
        if (names.size() > 60) break;
        names.append(names.empty() ? "" : ", ").append(place.name);
      }
      const std::size_t count = places.size();
      sheet_.add(file, kKeys, count, std::move(places), names);
      const std::string_view name = index::base_name(evidence_.path(file));
      if (names_environment(name) && notes.keys.size() >= kShared) {
        sheet_.add(file, kTemplate, notes.keys.size());
      }
      const auto depth = std::ranges::count(evidence_.path(file), '/');
      if (name.ends_with(".conf") && depth <= kDeepest && notes.keys.size() >= kDirectives) {
        sheet_.add(file, kDirective, notes.keys.size());
      }
    });
    add_keyed_files();
  }

  // Files without types and functions in a folder where several files answer to the first parts of
  // the keys: "app.name" in app.php.
  void add_keyed_files() {
    std::map<std::string_view, std::vector<std::pair<FileId, std::size_t>>> folders;
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      if (!evidence_.is_product(file) || evidence_.index().files()[file].language.empty()) continue;
      const std::string_view name = index::base_name(evidence_.path(file));
      const std::size_t keys = keys_.below(name.substr(0, name.find('.')));
      if (keys == 0 || declares_code(file)) continue;
      folders[index::folder_of(evidence_.path(file))].emplace_back(file, keys);
    }
    for (const auto& [folder, files] : folders) {
      if (files.size() < kShared) continue;
      for (const auto& [file, keys] : files) {
        sheet_.add(file, kKeys, keys);
        const std::string_view name = index::base_name(evidence_.path(file));
        holders_.insert(name.substr(0, name.find('.')));
      }
    }
  }

  static bool names_environment(std::string_view name) {
    return name.starts_with(".env") || name.starts_with("env.") || name.starts_with("env-") ||
           name.find(".env.") != std::string_view::npos;
  }

  // What one copies to make one's own settings.
  bool is_sample(FileId file) const {
    const std::string_view name = index::base_name(evidence_.path(file));
    if (name.ends_with(".sample") || name.ends_with(".example")) return true;
    constexpr std::array<std::string_view, 2> kMade{"example", "sample"};
    constexpr std::array<std::string_view, 6> kOf{"config",   "configuration", "conf",
                                                  "settings", "env",           "options"};
    return has_word(name, kMade) && has_word(name, kOf);
  }

  // Texts of messages are read by keys, too.
  void take_texts_off() {
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      const std::string_view path = evidence_.path(file);
      const auto lies_in = [path](std::string_view folder) {
        return path.starts_with(folder) || path.find(std::string("/").append(folder)) != path.npos;
      };
      const std::string_view name = index::base_name(path);
      const bool for_tests = names_environment(name) && name.find("test") != name.npos;
      if (for_tests || std::ranges::any_of(kTextFolders, lies_in)) sheet_.scale(file, 0);
    }
  }

  bool declares_code(FileId file) const {
    return std::ranges::any_of(evidence_.index().declarations(file), [](const auto& declared) {
      return is_type(declared.kind) || is_callable(declared.kind);
    });
  }

  void add_places() {
    std::set<std::string_view> languages;
    for (const auto& file : evidence_.index().files()) languages.insert(file.language);
    std::set<std::string_view> patterns;
    for (const std::string_view language : languages) {
      for (const index::FrameworkName& row : index::framework_names(language)) {
        if (row.known == Known::kSettingsPath) patterns.insert(row.name);
      }
    }
    std::vector<PathGlob> globs;
    for (const std::string_view pattern : patterns) globs.emplace_back(pattern);
    for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
      const std::string_view path = evidence_.path(file);
      const auto matches = [path](const PathGlob& glob) { return glob.matches(path); };
      if (!evidence_.roles(file).empty() || evidence_.index().files()[file].document) continue;
      if (std::ranges::any_of(globs, matches)) sheet_.add(file, kPlace, 1);
      if (is_sample(file)) sheet_.add(file, kSample, 1);
    }
  }

  const CodeEvidence& evidence_;
  const ReadKeys keys_;
  ScoreSheet sheet_;
  std::set<DeclarationRef> types_;        // filled from settings
  std::set<DeclarationRef> readers_;      // functions that read settings
  std::set<DeclarationRef> reads_fixed_;  // functions that say themselves what they read
  std::set<FileId> accessed_;
  std::set<std::string_view> holders_;  // first parts of keys that files answer to
};

}  // namespace

ScoreSheet settings_sheet(const CodeEvidence& evidence) { return Signals(evidence).sheet(); }

}  // namespace kestrix
