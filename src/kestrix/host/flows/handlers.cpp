#include "kestrix/host/flows/handlers.h"

#include <array>
#include <deque>
#include <set>
#include <utility>
#include <vector>

#include "kestrix/text/wildmatch.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::FrameworkName;
using index::IndexedReference;
using index::Known;
using index::Role;

// A language without annotations marks a handler by the value that it makes, others also by what
// they add their handlers to: a router, a blueprint.
bool bears(std::string_view language, const IndexedReference& to) {
  if (to.role == Role::kAnnotates) return true;
  if (language == "go") return to.role == Role::kConstructs;
  const bool scripted =
      language == "python" || language == "javascript" || language == "typescript";
  const bool qualified = to.name.find_first_of("./-") != std::string_view::npos;
  return scripted && qualified && (to.role == Role::kConstructs || to.role == Role::kCalls);
}

// Folders of these names are common, so the framework has to be used there.
struct Package {
  std::string_view framework;
  std::string_view name;     // as a manifest has it
  std::string_view place{};  // below the manifest's folder, or below its src
};
constexpr std::array<Package, 9> kPackages{{{"astro", "\"astro\""},
                                            {"expo", "\"expo-router\"", "app/"},
                                            {"inertia", "\"@inertiajs/"},
                                            {"next", "\"next\""},
                                            {"nuxt", "\"nuxt"},
                                            {"redwood", "\"@redwoodjs/"},
                                            {"remix", "\"@remix-run/"},
                                            {"sveltekit", "\"@sveltejs/kit\""},
                                            {"tanstack", "\"@tanstack/"}}};
constexpr const char* kManifest = "package.json";

class Finder {
 public:
  Finder(const CodeEvidence& evidence, TableTexts& texts) : evidence_(evidence), texts_(texts) {}

  std::map<FileId, HandlerSign> find() {
    for (const IndexedReference& to : evidence_.index().references()) {
      if (to.target == IndexedReference::kOutside && !evidence_.is_test(to.source)) look_at(to);
    }
    while (!open_.empty()) {
      const auto [type, row] = open_.front();
      open_.pop_front();
      note(type.file, *row, evidence_.place_of(type));
      for (const DeclarationRef subtype : evidence_.subtypes(type)) take(subtype, *row);
    }
    look_at_paths();
    return std::move(found_);
  }

 private:
  void look_at(const IndexedReference& to) {
    const std::string_view language = evidence_.index().files()[to.source].language;
    if (kSubtyping.has(to.role)) {
      const FrameworkName* row = index::known_as(language, Known::kHandlerBase, to.name);
      if (row == nullptr) return;
      if (to.within > 0) {
        take({to.source, to.within - 1}, *row);
      } else {
        note(to.source, *row, evidence_.place_of(to));
      }
    } else if (bears(language, to)) {
      const FrameworkName* row = index::known_as(language, Known::kHandlerMarker, to.name);
      if (row != nullptr) note(to.source, *row, evidence_.place_of(to));
    }
  }

  void take(DeclarationRef type, const FrameworkName& row) {
    if (known_.insert(type).second) open_.emplace_back(type, &row);
  }

  // What something is tells more than what it bears.
  void note(FileId file, const FrameworkName& row, Place at) {
    const auto [entry, fresh] = found_.try_emplace(file, HandlerSign{&row, nullptr, at});
    const bool better =
        row.known == Known::kHandlerBase && entry->second.row->known == Known::kHandlerMarker;
    if (!fresh && better) entry->second = {&row, nullptr, std::move(at)};
  }

  void look_at_paths() {
    std::map<std::string_view, std::vector<Pattern>> by_language;
    const auto files = evidence_.index().files();
    for (FileId file = 0; file < files.size(); ++file) {
      if (files[file].document || evidence_.is_test(file)) continue;
      const std::string_view language = language_of(files[file]);
      const auto [entry, fresh] = by_language.try_emplace(language);
      if (fresh) entry->second = patterns_of(language);
      for (const Pattern& pattern : entry->second) {
        if (!pattern.glob.matches(files[file].path)) continue;
        if (!is_there(pattern.row->framework, files[file].path)) continue;
        note(file, *pattern.row, {std::string(files[file].path), 0, {}});
        found_.at(file).place = pattern.row;
        break;
      }
    }
  }

  // Templates that nobody reads are found where their language's framework looks for them.
  static std::string_view language_of(const index::IndexedFile& file) {
    return file.language.empty() && file.path.ends_with(".razor") ? "csharp" : file.language;
  }

  // Whether the manifest next above the file names the framework's package; true without one.
  bool is_there(std::string_view framework, std::string_view path) {
    const auto package = std::ranges::find(kPackages, framework, &Package::framework);
    if (package == kPackages.end()) return true;
    const auto [known, fresh] = there_.try_emplace({framework, directory_of(path)}, true);
    for (std::string_view folder = directory_of(path); fresh; folder = directory_of(folder)) {
      const std::string above = folder.empty() ? std::string() : std::string(folder) + '/';
      if (const auto manifest = evidence_.index().find(above + kManifest)) {
        const std::string_view rest = path.substr(above.size());
        known->second = texts_.of(evidence_, *manifest).find(package->name) != std::string::npos &&
                        (package->place.empty() || rest.starts_with(package->place) ||
                         rest.starts_with("src/" + std::string(package->place)));
        break;
      }
      if (folder.empty()) break;
    }
    return known->second;
  }

  struct Pattern {
    const FrameworkName* row;
    index::Wildmatch glob;
  };

  static std::vector<Pattern> patterns_of(std::string_view language) {
    std::vector<Pattern> patterns;
    for (const FrameworkName& row : index::framework_names(language)) {
      if (row.known == Known::kHandlerPath) patterns.push_back({&row, index::Wildmatch(row.name)});
    }
    return patterns;
  }

  const CodeEvidence& evidence_;
  TableTexts& texts_;
  std::map<std::pair<std::string_view, std::string_view>, bool> there_;  // framework and folder
  std::map<FileId, HandlerSign> found_;
  std::set<DeclarationRef> known_;
  std::deque<std::pair<DeclarationRef, const FrameworkName*>> open_;
};

}  // namespace

std::map<FileId, HandlerSign> framework_handlers(const CodeEvidence& evidence, TableTexts& texts) {
  return Finder(evidence, texts).find();
}

}  // namespace kestrix
