#include "kestrix/host/flows/classes/type_signs.h"

#include <algorithm>

#include "kestrix/host/flows/classes/families.h"
#include "kestrix/host/flows/classes/family_signs.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/sorting.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Known;
using index::Role;

// Who else calls what most call on load makes use of it.
constexpr std::size_t kLoadedToOthers = 4;

std::string_view last_word(std::string_view name) {
  return name.substr(name.find_last_of(".:/\\") + 1);
}

class Finder {
 public:
  explicit Finder(const CodeEvidence& code) : code_(code) {}

  TypeSigns find() {
    const auto files = code_.index().files();
    for (const IndexedReference& to : code_.index().references()) {
      if (!code_.is_product(to.source)) continue;
      if (to.target == IndexedReference::kOutside) {
        take_outside(files[to.source].language, to);
      } else if (to.declaration > 0 && to.target == to.source) {
        helps_.insert({to.source, code_[DeclarationRef{to.target, to.declaration - 1}].name});
      } else if (to.declaration > 0 && code_.is_product(to.target)) {
        take_inside({to.target, to.declaration - 1}, to);
      }
    }
    take_names();
    std::erase_if(signs_.on_load, [this](const auto& entry) {
      return called_later_[entry.first] * kLoadedToOthers > entry.second.size();
    });
    return std::move(signs_);
  }

 private:
  void take_inside(DeclarationRef named, const IndexedReference& to) {
    if (kSubtyping.has(to.role)) {
      if (index::is_type(code_[named].kind)) signs_.bases[named].push_back(to.source);
    } else if (to.role == Role::kAnnotates) {
      signs_.markers[named].push_back(to.source);
    } else if (to.role == Role::kCalls) {
      if (is_on_load(to)) {
        signs_.on_load[named].push_back(to.source);
      } else {
        ++called_later_[named];
      }
    } else if (to.role == Role::kType && gives_a_method(to)) {
      signs_.methods[named].push_back(to.source);
    } else if (to.role == Role::kType && code_[named].fields > 0 && fills_a_table(to)) {
      signs_.tables[named].push_back(to.source);
    }
  }

  // Whether to load the file is to make the call: Go's init functions, what a module exports by
  // default. Of scripts all is, so it tells nothing there.
  bool is_on_load(const IndexedReference& to) const {
    const std::string_view language = code_.index().files()[to.source].language;
    if (language == "go") return to.within == 0;
    return (language == "typescript" || language == "javascript") && to.within > 0 &&
           code_[DeclarationRef{to.source, to.within - 1}].name == "default";
  }

  // Whether it names the receiver of a method. Go writes those of one type in as many files as it
  // likes.
  bool gives_a_method(const IndexedReference& to) const {
    if (to.within == 0 || code_.index().files()[to.source].language != "go") return false;
    const auto& method = code_[DeclarationRef{to.source, to.within - 1}];
    return method.kind == DeclarationKind::kMethod && method.container == 0 &&
           method.line == to.line;
  }

  // Whether what the file declares there, of the type that it names, is made of several values. C
  // has the type before the name, and lets a table be announced on one line.
  bool fills_a_table(const IndexedReference& to) const {
    const auto declarations = code_.index().declarations(to.source);
    const auto is_value = [](const auto& row) {
      return row.container == 0 &&
             (row.kind == DeclarationKind::kConstant || row.kind == DeclarationKind::kVariable);
    };
    if (to.within > 0) {
      const auto& holder = declarations[to.within - 1];
      return is_value(holder) && holder.size > 1;
    }
    const auto held = std::ranges::find_if(
        declarations, [&](const auto& row) { return row.line == to.line && is_value(row); });
    return held != declarations.end() && std::ranges::any_of(declarations, [&](const auto& row) {
             return row.name == held->name && is_value(row) && row.last_line > row.line + 1;
           });
  }

  // What a library calls through its own base types, whoever it is.
  void take_outside(std::string_view language, const IndexedReference& to) {
    if (!kSubtyping.has(to.role) || to.within == 0) return;
    static constexpr Known kOther[] = {Known::kModelBase, Known::kRecordBase, Known::kErrorBase,
                                       Known::kSettingsBase, Known::kTestBase};
    for (const Known known : kOther) {
      if (known_as(language, known, to.name) == nullptr) continue;
      if (known != Known::kTestBase) signs_.data.insert({to.source, to.within - 1});
      return;
    }
    if (known_as(language, Known::kHandlerBase, to.name) != nullptr) return;
    const std::string_view name = last_word(to.name);
    if (name != to.name) signs_.outside[{language, name}].push_back(to.source);  // not its own
  }

  // Functions of one name in several files of a folder: one of them is called, or each by whoever
  // loads its file.
  void take_names() {
    const auto files = code_.index().files();
    TypeSigns::ByName all;
    for (FileId file = 0; file < files.size(); ++file) {
      if (!code_.is_product(file) || is_header(files[file].path)) continue;
      for (const auto& declared : code_.index().declarations(file)) {
        if (declared.kind != DeclarationKind::kFunction || declared.container != 0) continue;
        if (declared.exported && !helps_.contains({file, declared.name}))
          all[{index::folder_of(files[file].path), declared.name}].push_back(file);
      }
    }
    for (auto& [name, found] : all) {
      sort_distinct(found);
      if (found.size() >= kLeastFamily) signs_.same.emplace(name, std::move(found));
    }
  }

  const CodeEvidence& code_;
  TypeSigns signs_;
  std::map<DeclarationRef, std::size_t> called_later_;
  std::set<std::pair<FileId, std::string_view>> helps_;  // what a file uses itself
};

}  // namespace

TypeSigns type_signs(const CodeEvidence& evidence) { return Finder(evidence).find(); }

}  // namespace kestrix
