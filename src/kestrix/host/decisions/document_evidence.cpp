#include "kestrix/host/decisions/document_evidence.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {
namespace {

using index::FileId;
using index::RepositoryIndex;

// What names in documents can stand for. Views into the index.
class Targets {
 public:
  explicit Targets(const RepositoryIndex& index) : index_(index) {
    for (const auto& file : index.files()) {
      if (file.document)
        documents_[index::base_name(file.path)].push_back(file.path);
      else if (!file.language.empty())
        add_source(file.path);
    }
    for (const auto& symbol : index.symbols()) {
      const bool type = symbol.kind == SymbolKind::kClass || symbol.kind == SymbolKind::kInterface;
      if (type) types_.insert(symbol.name);
    }
  }

  bool is_type(std::string_view name) const { return types_.contains(name); }

  bool is_folder(std::string_view name, std::string_view document) const {
    if (name.find('/') == name.npos) return false;
    if (folders_.contains(name)) return true;
    const auto below = index::join_normal(index::folder_of(document), name);
    return below && folders_.contains(*below);
  }

  // A name without a folder stands for any file that is called so.
  bool is_source(std::string_view name, std::string_view document) const {
    const auto found = sources_.find(index::base_name(name));
    if (found == sources_.end()) return false;
    if (name.find('/') == name.npos) return true;
    if (std::ranges::any_of(found->second, [name](auto path) { return ends_as(path, name); })) {
      return true;
    }
    const auto below = index::join_normal(index::folder_of(document), name);
    return below && std::ranges::find(found->second, *below) != found->second.end();
  }

  // The one document that a link or a name in a source text leads to; "" for none.
  std::string_view linked(std::string_view target, std::string_view document) const {
    const std::string from_top(target.starts_with('/') ? target.substr(1) : target);
    const auto below = index::join_normal(index::folder_of(document), target);
    for (const auto& path : {below.value_or(std::string()), from_top}) {
      for (const std::string_view ending :
           {"", ".md", ".rst", ".adoc", "/README.md", "/index.md"}) {
        if (const auto id = index_.find(path + std::string(ending))) {
          if (index_.files()[*id].document) return index_.files()[*id].path;
        }
      }
    }
    return {};
  }

  std::string_view named(std::string_view name) const {
    const auto found = documents_.find(index::base_name(name));
    if (found == documents_.end()) return {};
    std::string_view only;
    for (const auto path : found->second) {
      if (!ends_as(path, name)) continue;
      if (!only.empty()) return {};
      only = path;
    }
    return only;
  }

 private:
  static bool ends_as(std::string_view path, std::string_view end) {
    return path.ends_with(end) &&
           (path.size() == end.size() || path[path.size() - end.size() - 1] == '/');
  }

  void add_source(std::string_view path) {
    sources_[index::base_name(path)].push_back(path);
    for (auto folder = index::folder_of(path); !folder.empty(); folder = index::folder_of(folder)) {
      if (!folders_.insert(folder).second) return;
    }
  }

  const RepositoryIndex& index_;
  std::unordered_map<std::string_view, std::vector<std::string_view>, SeededHash>
      sources_;  // by name
  std::unordered_map<std::string_view, std::vector<std::string_view>, SeededHash>
      documents_;  // by name
  std::unordered_set<std::string_view, SeededHash> folders_;
  std::unordered_set<std::string_view, SeededHash> types_;
};

// The strings outlive the views: they stand in the same object, which is not changed again.
void sort_names(DocumentView& view, const Targets& targets, std::string_view document) {
  for (const std::string& name : view.facts.names) {
    if (targets.is_type(name))
      view.types.push_back(name);
    else if (targets.is_source(name, document))
      view.sources.push_back(name);
    else if (targets.is_folder(name, document))
      view.folders.push_back(name);
  }
}

}  // namespace

DocumentEvidence::DocumentEvidence(const RepositoryIndex& index) {
  std::vector<std::pair<std::string_view, std::vector<std::string>>> naming;
  index.for_each_noted([&](FileId file) {
    auto notes = index.notes(file);
    const std::string_view path = index.files()[file].path;
    // A table of contents names every document; that says nothing of one.
    const bool code = !index.files()[file].language.empty();
    if (code && !notes.documents.empty()) naming.emplace_back(path, std::move(notes.documents));
    if (notes.document) {
      auto& view = documents_[path];
      view.facts = std::move(*notes.document);
      view.content = notes.content;
    }
  });
  if (documents_.empty()) return;
  const Targets targets(index);
  const auto find = [&](std::string_view path) {
    const auto found = documents_.find(path);
    return found == documents_.end() ? nullptr : &found->second;
  };
  for (const auto& file : index.files()) {
    DocumentView* view = find(file.path);
    if (view == nullptr) continue;
    sort_names(*view, targets, file.path);
    std::set<std::string_view> linked;
    for (const auto& link : view->facts.links) linked.insert(targets.linked(link, file.path));
    linked.erase(file.path);
    for (const auto path : linked) {
      if (DocumentView* target = find(path)) target->linked_from.push_back(file.path);
    }
    const auto known = originals_.try_emplace(view->content, file.path).first;
    const auto shorter = [](std::string_view a, std::string_view b) {
      return std::tuple(a.size(), a) < std::tuple(b.size(), b);
    };
    if (shorter(file.path, known->second)) known->second = file.path;
  }
  for (const auto& [source, names] : naming) {
    std::set<std::string_view> named;
    for (const auto& name : names) named.insert(targets.named(name));
    for (const auto path : named) {
      if (DocumentView* target = find(path)) target->named_in.push_back(source);
    }
  }
}

const DocumentView* DocumentEvidence::of(std::string_view path) const {
  const auto found = documents_.find(path);
  return found == documents_.end() ? nullptr : &found->second;
}

bool DocumentEvidence::is_copy(std::string_view path) const {
  const DocumentView* view = of(path);
  return view != nullptr && originals_.at(view->content) != path;
}

namespace {

thread_local const DocumentEvidence* evidence_in_force = nullptr;

}  // namespace

DocumentEvidenceScope::DocumentEvidenceScope(const DocumentEvidence& evidence)
    : before_(std::exchange(evidence_in_force, &evidence)) {}

DocumentEvidenceScope::~DocumentEvidenceScope() { evidence_in_force = before_; }

const DocumentEvidence* DocumentEvidenceScope::current() { return evidence_in_force; }

}  // namespace kestrix
