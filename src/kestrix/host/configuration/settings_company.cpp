#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "kestrix/host/configuration/setting_names.h"
#include "kestrix/host/configuration/settings_signals.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::FileId;
using index::IndexedEdge;
using index::Role;

constexpr Signal kGathers{"gathers_settings", 2.4, "uses {} file of settings that few others use",
                          "uses {} files of settings that few others use", "crates.io, nestjs"};
constexpr Signal kBeside{"beside_settings", 1.5, "stands among the settings, with {} file of them",
                         "stands among the settings, with {} files of them", "ripgrep, lazygit"};
constexpr Signal kExplains{"explains_settings", 1.0, "explains {} setting", "explains {} settings",
                           "flask, lazygit"};

constexpr double kSettings = 2.4;  // what scores so much is a file of settings
constexpr std::size_t kSeveral = 5;
constexpr std::size_t kFewUsers = 4;
constexpr std::size_t kGathered = 5;  // one of so many files that it uses is one of settings
constexpr double kRead = 1.5;         // one setting that it reads
constexpr std::size_t kBest = 3;
constexpr std::size_t kSmallFolder = 16;
constexpr std::size_t kAmong = 3;  // one of so many files is one of settings
constexpr std::size_t kExplained = 8;
constexpr std::size_t kSpokenOf = 4;  // one of so many names in it is one of a setting
constexpr std::size_t kWords = 200;   // a history names many settings, but far between
constexpr std::size_t kLesser = 3;
constexpr std::size_t kMostDocuments = 4;

class Company {
 public:
  Company(const CodeEvidence& evidence, ScoreSheet& sheet)
      : evidence_(evidence), sheet_(sheet), settings_(evidence.index().files().size()) {
    for (const ScoreSheet::Scored& each : sheet.ranked()) {
      if (each.points < kSettings || !evidence.is_product(each.file)) continue;
      // Each command has arguments of its own; that makes none of settings.
      const auto reasons = sheet.reasons(each.file);
      settings_[each.file] = reasons.size() > 1 || reasons.front().kind != "settings_type";
    }
  }

  void add() {
    add_gathering();
    add_folders();
    take_names();
    add_texts();
  }

 private:
  // What puts the parts of the settings together.
  void add_gathering() {
    std::vector<std::vector<FileId>> used(settings_.size());
    for (const IndexedEdge& edge : evidence_.index().edges()) {
      if (!evidence_.is_product(edge.source) || edge.source == edge.target) continue;
      const bool few = evidence_.product_dependents(edge.target) <= kFewUsers;
      if (settings_[edge.target] && few) used[edge.source].push_back(edge.target);
    }
    for (FileId file = 0; file < used.size(); ++file) {
      const std::size_t count = used[file].size();
      const std::size_t all = evidence_.index().edges_from(file).size();
      if (count < kSeveral || kGathered * count < all) continue;
      std::vector<Place> places;
      for (const FileId each : used[file]) places.push_back({std::string(path(each)), 0, {}});
      sheet_.add(file, kGathers, count, std::move(places));
    }
  }

  // What goes with the settings in the folders of the files that show the most.
  void add_folders() {
    std::set<std::string_view> folders;
    std::size_t looked_at = 0;
    for (const ScoreSheet::Scored& each : sheet_.ranked()) {
      if (looked_at == kBest) break;
      if (!is_code(each.file)) continue;
      ++looked_at;
      folders.insert(index::folder_of(path(each.file)));
    }
    std::map<std::string_view, std::vector<FileId>> files;
    for (FileId file = 0; file < settings_.size(); ++file) {
      const std::string_view folder = index::folder_of(path(file));
      if (!folder.empty() && folders.contains(folder) && is_code(file)) {
        files[folder].push_back(file);
      }
    }
    for (const auto& [folder, all] : files) {
      if (all.size() <= kSmallFolder) add_folder(all);
    }
  }

  void add_folder(const std::vector<FileId>& files) {
    std::set<FileId> settings;
    for (const FileId file : files) {
      if (sheet_.score(file) >= kRead) settings.insert(file);
    }
    if (settings.size() < 2 || kAmong * settings.size() < files.size()) return;
    const std::set<FileId> all(files.begin(), files.end());
    std::set<FileId> joined;
    for (const FileId file : files) {
      for (const IndexedEdge& edge : evidence_.index().edges_from(file)) {
        if (!all.contains(edge.target)) continue;
        if (settings.contains(edge.target)) joined.insert(file);
        if (settings.contains(file)) joined.insert(edge.target);
      }
    }
    std::vector<Place> places;
    for (const FileId file : settings) places.push_back({std::string(path(file)), 0, {}});
    for (const FileId file : joined) {
      if (!settings.contains(file)) sheet_.add(file, kBeside, settings.size(), places);
    }
  }

  bool is_code(FileId file) const {
    return evidence_.is_product(file) && !evidence_.index().files()[file].language.empty();
  }

  void take_names() {
    for (const index::IndexedReference& to : evidence_.index().references()) {
      if (to.role == Role::kReads && evidence_.is_product(to.source)) {
        names_.add(evidence_.index().name_of(to));
      }
    }
    for (FileId file = 0; file < settings_.size(); ++file) {
      if (!settings_[file]) continue;
      for (const auto& row : evidence_.index().declarations(file)) {
        const bool holds = row.kind == DeclarationKind::kField ||
                           row.kind == DeclarationKind::kConstant ||
                           row.kind == DeclarationKind::kMember;
        if (holds) names_.add(row.name);
      }
    }
  }

  void add_texts() {
    std::vector<std::pair<FileId, SettingNames::Share>> documents;
    evidence_.index().for_each_noted([&](FileId file) {
      const index::FileNotes notes = evidence_.index().notes(file);
      if (!notes.document) return;
      auto share = names_.share_of(notes.document->names);
      const std::size_t count = share.settings.size();
      if (count < kExplained || kSpokenOf * count < share.names) return;
      if (kWords * count >= notes.document->words) documents.emplace_back(file, std::move(share));
    });
    std::ranges::sort(documents, {}, [](const auto& each) {
      return std::pair(-static_cast<std::ptrdiff_t>(each.second.settings.size()), each.first);
    });
    if (documents.size() > kMostDocuments) documents.resize(kMostDocuments);
    for (const auto& [file, share] : documents) {
      if (kLesser * share.settings.size() < documents.front().second.settings.size()) break;
      sheet_.add(file, kExplains, share.settings.size(), places(file, share.settings));
    }
  }

  std::vector<Place> places(FileId file, const std::vector<std::string>& names) const {
    std::vector<Place> all;
    for (const std::string& name : names) all.push_back({std::string(path(file)), 0, name});
    return all;
  }

  std::string_view path(FileId file) const { return evidence_.path(file); }

  const CodeEvidence& evidence_;
  ScoreSheet& sheet_;
  std::vector<bool> settings_;  // by file
  SettingNames names_;
};

}  // namespace

void add_settings_company(const CodeEvidence& evidence, ScoreSheet& sheet) {
  Company(evidence, sheet).add();
}

}  // namespace kestrix
