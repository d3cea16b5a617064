#include "kestrix/host/configuration/settings_signals.h"

#include <algorithm>
#include <array>
#include <set>

#include "kestrix/host/configuration/read_keys.h"
#include "kestrix/host/evidence/name_words.h"
#include "kestrix/host/index_evidence.h"
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
                        "flask, umami"};
constexpr Signal kReader{"settings_reader", 1.5, "{} file reads settings through its functions",
                         "{} files read settings through its functions", "crates.io, jellyfin"};
constexpr Signal kReadsThrough{"reads_through", 1.2, "reads settings through {} function",
                               "reads settings through functions, {} times", "cli, lazygit"};
constexpr Signal kBound{"settings_type", 3.0, "{} type of it is filled from settings",
                        "{} types of it are filled from settings", "eShopOnWeb, Polly"};
constexpr Signal kCalls{"settings_calls", 1.2, "takes in settings: {} call",
                        "takes in settings: {} calls", "eShopOnWeb, jellyfin"};
constexpr Signal kKeys{"keys_read", 1.7, "holds {} key that the code reads",
                       "holds {} keys that the code reads", "scrapy, jekyll"};
constexpr Signal kDirective{"directives", 0.8, "holds {} directive", "holds {} directives",
                            "redis"};

constexpr std::array<std::string_view, 4> kTextFolders{"locales/", "locale/", "lang/", "i18n/"};
constexpr std::size_t kDirectives = 10;
constexpr std::ptrdiff_t kDeepest = 2;
constexpr std::size_t kShared = 3;

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
    add_settings_places(evidence_, sheet_);
    add_settings_names(evidence_, sheet_);
    add_settings_builders(evidence_, sheet_);
    add_settings_variables(evidence_, std::move(variables_), sheet_);
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
      std::ranges::copy_if(places, std::back_inserter(own), [this](const Place& place) {
        return !is_held(place.name) && !ReadKeys::of_platform(place.name);
      });
      const std::string names = names_and_lines(own);
      const std::size_t count = own.size();
      sheet_.add(file, kReads, count, std::move(own), names);
    }
  }

  // Whether the setting stands in one of the product's own files, which is what reads it.
  bool is_held(std::string_view key) const {
    const std::size_t dot = key.find('.');
    return dot != std::string_view::npos && holders_.contains(key.substr(0, dot));
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
    }
  }

  void add_settings_files() {
    const auto& index = evidence_.index();
    std::map<std::string_view, std::vector<std::pair<FileId, std::size_t>>> directives;
    index.for_each_noted([&](FileId file) {
      const index::FileNotes notes = index.notes(file);
      if (notes.keys.empty() || !evidence_.roles(file).empty()) return;
      std::vector<Place> places;
      for (const std::string& key : notes.keys) {
        if (is_environment_variable(key)) variables_.push_back(key);
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
      const auto depth = std::ranges::count(evidence_.path(file), '/');
      if (name.ends_with(".conf") && depth <= kDeepest && notes.keys.size() >= kDirectives) {
        directives[index::folder_of(evidence_.path(file))].emplace_back(file, notes.keys.size());
      }
    });
    for (const auto& [folder, files] : directives) {
      if (files.size() > kShared) continue;  // what something is tried with
      for (const auto& [file, count] : files) sheet_.add(file, kDirective, count);
    }
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

  const CodeEvidence& evidence_;
  const ReadKeys keys_;
  ScoreSheet sheet_;
  std::set<DeclarationRef> types_;        // filled from settings
  std::set<DeclarationRef> readers_;      // functions that read settings
  std::set<DeclarationRef> reads_fixed_;  // functions that say themselves what they read
  std::vector<std::string> variables_;    // of the environment, as files of keys have them
  std::set<std::string_view> holders_;    // first parts of keys that files answer to
};

}  // namespace

ScoreSheet settings_sheet(const CodeEvidence& evidence) { return Signals(evidence).sheet(); }

}  // namespace kestrix
