#include "kestrix/index/names/name_resolver.h"

#include <algorithm>
#include <array>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

using Kind = NamedThing::Kind;

// Paths that start so stay in the repository.
constexpr std::array<std::string_view, 3> kOwnRoots = {"crate", "self", "super"};

// As names are written, whatever the language joins them by.
std::string with_dots(std::string_view path) {
  std::string dotted;
  for (std::size_t at = 0; at < path.size(); ++at) {
    const bool joint = path.substr(at).starts_with("::");
    dotted += joint ? '.' : path[at];
    at += joint ? 1 : 0;
  }
  return dotted;
}

}  // namespace

NameResolver::NameResolver(const IndexedFiles& files, const Scopes& scopes,
                           const DeclarationTable& table, FileId file)
    : files_(files), scopes_(scopes), table_(table), file_(file) {
  const Language* language = language_named(files.language(file));
  if (language == nullptr || language->code == nullptr) return;
  members_in_scope_ = language->code->members_in_scope;
  capital_types_ = language->code->capital_types;
  paths_outside_ = language->code->paths_outside;
}

bool NameResolver::looks_outside(std::string_view name) const {
  if (paths_outside_ && name.find('.') != std::string_view::npos && ascii::is_lower(name.front()))
    return std::ranges::find(kOwnRoots, first_part(name)) == kOwnRoots.end();
  if (name.starts_with('.')) name.remove_prefix(1);
  return capital_types_ && !name.empty() && ascii::is_upper(name.front()) &&
         std::ranges::none_of(table_.find_all(first_part(name), kMostDeclarers),
                              [&](DeclarationRef at) { return is_type(table_[at].kind); });
}

NamedThing NameResolver::resolve(std::string_view name, std::uint32_t within, bool as_type) {
  if (name.starts_with('@')) return resolve_own(name.substr(1), within);
  std::string_view rest = name;
  if (const Found root = resolve_root(rest, within, as_type)) {
    const NamedThing found = descend(*root, rest);
    if (found.rest.empty()) return found;
    const bool own = found.kind == Kind::kDeclaration && found.at.file == file_;
    if (own) {
      if (const Found elsewhere = find_elsewhere(name, found.at)) return *elsewhere;
    }
    if (members_in_scope_ && !as_type) {
      // A member may have the name of its type; what follows tells which of them is meant.
      rest = name;
      const Found type = resolve_root(rest, within, true);
      NamedThing other = type ? descend(*type, rest) : NamedThing{};
      if (other.kind == Kind::kDeclaration && other.rest.empty()) return other;
    }
    // A namespace of others may be opened here, too.
    const bool other =
        capital_types_ && found.kind == Kind::kDeclaration && ascii::is_upper(found.rest.front());
    return other ? NamedThing{} : found;
  }
  if (const Found outside = find_outside(name)) return *outside;
  if (const Found inherited = find_in_nameless(name, within)) return *inherited;
  return {};
}

// A member of the type around the place.
NamedThing NameResolver::resolve_own(std::string_view name, std::uint32_t within) const {
  const auto mine = table_.of(file_);
  while (within > 0 && within <= mine.size() && !is_type(mine[within - 1].kind))
    within = mine[within - 1].container;
  if (within == 0 || within > mine.size()) return {};
  const auto member = find_member({file_, within - 1}, first_part(name));
  return member ? descend(NamedThing::declaration(*member), behind(name, first_part(name).size()))
                : NamedThing{};
}

// Takes what it has found the meaning of from the front of `rest`.
NameResolver::Found NameResolver::resolve_root(std::string_view& rest, std::uint32_t within,
                                               bool as_type) {
  if (const Found known = find_known(rest, within, as_type)) return known;
  const std::string_view root = first_part(rest);
  const Found found = find_through_wildcards(root);
  if (found) rest = behind(rest, root.size());
  return found;
}

// What the file itself says of a name.
NameResolver::Found NameResolver::find_known(std::string_view& rest, std::uint32_t within,
                                             bool as_type) const {
  const std::string_view root = first_part(rest);
  Found found = find_among_members(root, within, as_type);
  // Where a namespace may be opened anywhere, those that open it are none that declare it.
  const bool anywhere = capital_types_ && !root.empty() && ascii::is_upper(root.front());
  if (!found && anywhere) {
    if (const Found bound = find_bound(rest)) return bound;
  }
  if (!found) {
    if (const auto top = table_.find_top(file_, root)) found = NamedThing::declaration(*top);
  }
  if (!found && !anywhere) return find_bound(rest);
  if (found) rest = behind(rest, root.size());
  return found;
}

// What a namespace or type holds that this file declares, too, but not with all that it holds.
NameResolver::Found NameResolver::find_elsewhere(std::string_view name, DeclarationRef here) const {
  std::string_view rest = name;
  const Found bound = find_bound(rest);
  if (!bound) return std::nullopt;
  const bool space = table_[here].kind == DeclarationKind::kModule;
  const bool longer = name.size() - rest.size() > first_part(name).size();
  NamedThing found = descend(*bound, rest);
  if (found.rest.empty() || longer || (space && found.kind == Kind::kDeclaration)) return found;
  return std::nullopt;
}

// The longest bound front of the path counts: "a.b" of "import a.b" before "a".
NameResolver::Found NameResolver::find_bound(std::string_view& rest) const {
  const auto& bindings = scopes_.bindings(file_);
  for (std::string_view front = rest; !front.empty();
       front = front.substr(0, std::max<std::size_t>(front.rfind('.') + 1, 1) - 1)) {
    const auto found = std::ranges::lower_bound(bindings, front, {}, &Binding::local);
    if (found == bindings.end() || found->local != front) continue;
    rest = behind(rest, front.size());
    return follow(*found, 0);
  }
  return std::nullopt;
}

// NOLINTBEGIN(misc-no-recursion): each step is a hop, and kMostHops end it

NamedThing NameResolver::descend(NamedThing from, std::string_view rest) const {
  while (!rest.empty()) {
    const std::string_view part = first_part(rest);
    if (from.kind == Kind::kFile) {
      if (!from.rest.empty()) break;
      Found found = find_exported(from.at.file, part, 0);
      if (!found) {
        const Found sole = find_exported(from.at.file, kSoleExport, 0);
        if (!sole || sole->kind != Kind::kDeclaration || table_[sole->at].size > 0) break;
        from = *sole;
        continue;
      }
      from = *found;
    } else {
      const bool holds =
          is_type(table_[from.at].kind) || table_[from.at].kind == DeclarationKind::kModule;
      auto member = holds ? find_member(from.at, part) : find_assigned(from.at, part);
      if (!member && holds) member = find_in_twin(from.at, part);
      if (!member) break;
      from.at = *member;
    }
    rest = behind(rest, part.size());
  }
  if (!rest.empty()) {
    if (!from.rest.empty()) from.rest += '.';
    from.rest += rest;
  } else if (from.kind == Kind::kFile && from.rest.empty()) {
    if (const Found sole = find_exported(from.at.file, kSoleExport, 0)) return *sole;
  }
  return from;
}

// What is given to a function from outside of it carries its name: "function.member".
std::optional<DeclarationRef> NameResolver::find_assigned(DeclarationRef holder,
                                                          std::string_view name) const {
  const DeclarationView& row = table_[holder];
  if (row.kind != DeclarationKind::kFunction && row.kind != DeclarationKind::kConstant &&
      row.kind != DeclarationKind::kVariable) {
    return std::nullopt;
  }
  return table_.find_top(holder.file, joined(row.name, name));
}

// NOLINTEND(misc-no-recursion)

std::optional<FileId> NameResolver::module_named(std::string_view specifier) const {
  const auto& bindings = scopes_.bindings(file_);
  const auto found = std::ranges::lower_bound(bindings, specifier, {}, &Binding::local);
  const bool whole = found != bindings.end() && found->local == specifier && found->name.empty();
  return whole ? std::optional(found->target) : std::nullopt;
}

void NameResolver::order_imports() {
  imports_.emplace();
  for (const ImportFact& import : files_.facts(file_).imports) {
    if (import.module.empty()) continue;
    for (const ImportedName& named : import.names)
      imports_->try_emplace(named.bound(), Import{&import, &named});
    if (!import.local.empty()) imports_->try_emplace(import.local, Import{&import, nullptr});
    if (import.names.empty() && import.local.empty())
      imports_->try_emplace(first_part(import.module), Import{&import, nullptr});
  }
}

// A name that an import of this file brings in from outside, in full; else nothing.
NameResolver::Found NameResolver::find_outside(std::string_view name) {
  if (!imports_) order_imports();
  const bool absolute = name.starts_with('.');
  const std::string_view root = name.substr(0, name.find('.', absolute ? 1 : 0));
  const std::string_view rest = name.substr(root.size());
  const auto found = imports_->find(root);
  if (found == imports_->end()) return std::nullopt;
  const auto& [import, named] = found->second;
  if (named == nullptr) {
    if (import->local.empty()) return NamedThing{Kind::kOutside, {}, std::string(name)};
    return NamedThing{Kind::kOutside, {}, std::string(import->module).append(rest)};
  }
  std::string full = with_dots(import->module);
  if (named->name != "*" && named->name != "default") full.append(".").append(named->name);
  return NamedThing{Kind::kOutside, {}, full.append(rest)};
}

}  // namespace kestrix::index
