#include "kestrix/host/flows/handlers.h"

#include <array>
#include <deque>
#include <set>
#include <utility>
#include <vector>

#include "kestrix/text/wildmatch.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::FrameworkName;
using index::IndexedReference;
using index::Known;
using index::Role;

// A language without annotations marks a handler by the value that it makes.
bool bears(std::string_view language, Role role) {
  return role == Role::kAnnotates || (role == Role::kConstructs && language == "go");
}

class Finder {
 public:
  explicit Finder(const CodeEvidence& evidence) : evidence_(evidence) {}

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
    } else if (bears(language, to.role)) {
      const FrameworkName* row = index::known_as(language, Known::kHandlerMarker, to.name);
      if (row != nullptr) note(to.source, *row, evidence_.place_of(to));
    }
  }

  void take(DeclarationRef type, const FrameworkName& row) {
    if (known_.insert(type).second) open_.emplace_back(type, &row);
  }

  void note(FileId file, const FrameworkName& row, Place at) {
    found_.try_emplace(file, HandlerSign{&row, std::move(at)});
  }

  void look_at_paths() {
    std::map<std::string_view, std::vector<Pattern>> by_language;
    const auto files = evidence_.index().files();
    for (FileId file = 0; file < files.size(); ++file) {
      if (files[file].document || evidence_.is_test(file)) continue;
      const auto [entry, fresh] = by_language.try_emplace(files[file].language);
      if (fresh) entry->second = patterns_of(files[file].language);
      for (const Pattern& pattern : entry->second) {
        if (!pattern.glob.matches(files[file].path)) continue;
        note(file, *pattern.row, {std::string(files[file].path), 0, {}});
        break;
      }
    }
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
  std::map<FileId, HandlerSign> found_;
  std::set<DeclarationRef> known_;
  std::deque<std::pair<DeclarationRef, const FrameworkName*>> open_;
};

}  // namespace

std::map<FileId, HandlerSign> framework_handlers(const CodeEvidence& evidence) {
  return Finder(evidence).find();
}

}  // namespace kestrix
