#include <algorithm>
#include <array>
#include <map>
#include <string>

#include "kestrix/host/errors/signal_groups.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;

constexpr Signal kHandler{"error_handler", 7.0, "is a framework's handler of errors",
                          "is {} of a framework's handlers of errors", "halo, firefly"};
constexpr Signal kHook{"error_hook", 5.0, "is called by a framework with errors",
                       "is called by a framework with errors in {} ways", "netbox"};
constexpr Signal kServes{"handles_for_many", 0.6, "{} file has its errors handled there",
                         "{} files have their errors handled there", "solidus"};
constexpr Signal kHanded{"handed_errors", 2.5, "{} function of it is handed over for errors",
                         "{} functions of it are handed over for errors", "polar, cli"};

constexpr std::array<std::string_view, 9> kHandling{"Handler",  "Handlers", "Filter",
                                                    "Mapper",   "Listener", "Middleware",
                                                    "Boundary", "Advice",   "Controller"};

class Handlers {
 public:
  Handlers(const ErrorView& errors, ScoreSheet& sheet)
      : code_(errors.code), errors_(errors), sheet_(sheet) {}

  void add() {
    find_handlers();
    for (FileId file = 0; file < code_.index().files().size(); ++file) {
      if (!code_.is_product(file)) continue;
      find_hooks(file);
      find_handed(file);
    }
    std::set<FileId> handling;
    for (auto& [file, places] : handlers_) {
      handling.insert(file);
      const std::string names = names_and_lines(places);
      sheet_.add(file, kHandler, 1, std::move(places), names);
    }
    for (auto& [file, places] : hooks_) {
      handling.insert(file);
      const std::string names = names_and_lines(places);
      const std::size_t count = places.size();
      sheet_.add(file, kHook, count, std::move(places), names);
    }
    for (auto& [file, declared] : handed_) {
      const auto places = errors_.places_of(declared);
      sheet_.add(file, kHanded, declared.size(), places, names_and_lines(places));
    }
    for (const FileId file : handling) sheet_.add(file, kServes, code_.product_dependents(file));
  }

 private:
  // Libraries call what they ask about errors so.
  static bool handles_errors(std::string_view name) {
    name.remove_prefix(name.find_last_of("./:") + 1);  // 0 without one
    const auto ends = [name](std::string_view end) { return name.ends_with(end); };
    return names_error(name) && std::ranges::any_of(kHandling, ends);
  }

  // What frameworks ask about errors, by base type, annotation or call.
  void find_handlers() {
    for (const IndexedReference& to : code_.index().references()) {
      if (to.target != IndexedReference::kOutside || !code_.is_product(to.source)) continue;
      const auto language = code_.index().files()[to.source].language;
      const bool known = known_as(language, Known::kErrorHandler, to.name) != nullptr;
      if (!known && !(kSubtyping.has(to.role) && handles_errors(to.name))) continue;
      handlers_[to.source].push_back(code_.place_of(to));
    }
  }

  // Methods, and values whose names a framework looks for: these say whom it calls.
  void find_hooks(FileId file) {
    const auto language = code_.index().files()[file].language;
    const auto declared = code_.index().declarations(file);
    std::set<std::uint32_t> values;
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const auto& row = declared[place];
      if (known_as(language, Known::kErrorHook, row.name) == nullptr) continue;
      const DeclarationRef at{file, place};
      if (is_callable(row.kind)) {
        // What the product calls itself only bears such a name.
        if (code_.files_naming(at, {Role::kCalls}).empty())
          hooks_[file].push_back(code_.place_of(at));
      } else {
        values.insert(place + 1);
      }
    }
    if (values.empty()) return;
    for (const IndexedReference& to : code_.index().references_from(file)) {
      if (to.target == IndexedReference::kOutside || to.target == file) continue;
      if (values.contains(to.within) && code_.is_product(to.target)) {
        hooks_[to.target].push_back(code_.place_of(to));
      }
    }
  }

  // Functions about errors that are not called but handed over to who will call them.
  void find_handed(FileId file) {
    const auto declared = code_.index().declarations(file);
    for (std::uint32_t place = 0; place < declared.size(); ++place) {
      const auto& row = declared[place];
      const DeclarationRef at{file, place};
      if (!is_callable(row.kind) || !names_error(row.name)) continue;
      for (const std::uint32_t each : code_.references_to(at)) {
        const IndexedReference& to = code_.reference(each);
        if (!code_.is_product(to.source)) continue;
        const bool over =
            to.role == Role::kCatches || (to.role == Role::kLists && to.source != file);
        if (!over) continue;
        handed_[file].insert(at);
      }
    }
  }

  const CodeEvidence& code_;
  const ErrorView& errors_;
  ScoreSheet& sheet_;
  std::map<FileId, std::vector<Place>> handlers_;
  std::map<FileId, std::vector<Place>> hooks_;
  std::map<FileId, std::set<DeclarationRef>> handed_;
};

}  // namespace

void add_handler_signals(const ErrorView& errors, ScoreSheet& sheet) {
  Handlers(errors, sheet).add();
}

}  // namespace kestrix
