#include "kestrix/index/names/name_resolver.h"

#include <algorithm>
#include <array>
#include <deque>
#include <utility>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

using Kind = NamedThing::Kind;

// A chain of re-exports is followed so far, and of types that need each other's ancestors.
constexpr int kMostHops = 16;
constexpr std::size_t kMostAncestors = 64;
// Files that wildcards make known to one file, and barrels among them that are asked for a name.
constexpr std::size_t kMostReachable = 20'000;
constexpr std::size_t kMostBarrels = 64;
constexpr std::size_t kMostOpened = 256;  // types whose members one file imports all
// An object in a type whose members are known as the type's own.
constexpr std::string_view kCompanion = "Companion";
// A name that more files declare says nothing by itself.
constexpr std::size_t kMostDeclarers = 64;

// Paths that start so stay in the repository.
constexpr std::array<std::string_view, 3> kOwnRoots = {"crate", "self", "super"};

std::string_view first_part(std::string_view path) { return path.substr(0, path.find('.')); }

std::string_view behind(std::string_view path, std::size_t length) {
  return path.size() <= length ? std::string_view() : path.substr(length + 1);
}

std::string joined(std::string_view holder, std::string_view name) {
  return std::string(holder).append(".").append(name);
}

NamedThing thing(DeclarationRef at) { return {Kind::kDeclaration, at, {}}; }
NamedThing whole(FileId file, std::string_view rest = {}) {
  return {Kind::kFile, {file, 0}, std::string(rest)};
}

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

bool is_wildcard(const Binding& binding) {
  return binding.local == "*" && (binding.name.empty() || binding.name == "*");
}
bool opens_type(const Binding& binding) { return binding.local == "*" && !is_wildcard(binding); }

bool fits(DeclarationKind kind, bool as_type) {
  return !as_type || (kind != DeclarationKind::kField && kind != DeclarationKind::kMethod);
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
  return member ? descend(thing(*member), behind(name, first_part(name).size())) : NamedThing{};
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
    if (const auto top = table_.find_top(file_, root)) found = thing(*top);
  }
  if (!found && !anywhere) return find_bound(rest);
  if (found) rest = behind(rest, root.size());
  return found;
}

NameResolver::Found NameResolver::find_among_members(std::string_view name, std::uint32_t within,
                                                     bool as_type) const {
  if (!members_in_scope_) return std::nullopt;
  const auto mine = table_.of(file_);
  for (std::uint32_t holder = within; holder > 0 && holder <= mine.size();
       holder = mine[holder - 1].container) {
    const DeclarationRef at{file_, holder - 1};
    if (!is_type(mine[holder - 1].kind)) continue;
    const auto member = find_member(at, name);
    if (member && fits(table_[*member].kind, as_type)) return thing(*member);
  }
  return find_in_extended(name, within, as_type);
}

// What a type without a name inherits: its bases are those of the function or variable around it.
NameResolver::Found NameResolver::find_in_nameless(std::string_view name,
                                                   std::uint32_t within) const {
  if (!members_in_scope_) return std::nullopt;
  const auto mine = table_.of(file_);
  const std::string_view root = first_part(name);
  for (std::uint32_t holder = within; holder > 0 && holder <= mine.size();
       holder = mine[holder - 1].container) {
    if (is_type(mine[holder - 1].kind)) continue;
    for (const DeclarationRef base : ancestors_of({file_, holder - 1})) {
      const auto member = find_own_member(base, root);
      if (member) return descend(thing(*member), behind(name, root.size()));
    }
  }
  return std::nullopt;
}

// A member of the type whose members a file declares by their full names ("Type.member").
NameResolver::Found NameResolver::find_in_extended(std::string_view name, std::uint32_t within,
                                                   bool as_type) const {
  const auto mine = table_.of(file_);
  while (within > 0 && within <= mine.size() && mine[within - 1].container > 0)
    within = mine[within - 1].container;
  if (within == 0 || within > mine.size()) return std::nullopt;
  std::string_view owner = mine[within - 1].name;
  if (owner.find('.') == std::string_view::npos) return std::nullopt;
  owner = owner.substr(0, owner.rfind('.'));
  if (const auto here = table_.find_top(file_, joined(owner, name))) return thing(*here);
  const Found type = find_bound(owner);
  if (!type || !owner.empty() || type->kind != Kind::kDeclaration ||
      !is_type(table_[type->at].kind))
    return std::nullopt;
  const auto member = find_member(type->at, name);
  if (!member || !fits(table_[*member].kind, as_type)) return std::nullopt;
  return thing(*member);
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

NamedThing NameResolver::follow(const Binding& binding, int hops) const {
  if (binding.name.empty()) return whole(binding.target);
  if (const Found found = find_exported(binding.target, binding.name, hops + 1)) return *found;
  const std::string_view root = first_part(binding.name);
  if (root.size() < binding.name.size()) {
    const Found holder = find_exported(binding.target, root, hops + 1);
    if (holder) return descend(*holder, behind(binding.name, root.size()));
  }
  return whole(binding.target, binding.name);
}

NameResolver::Found NameResolver::find_exported(FileId file, std::string_view name,
                                                int hops) const {
  if (hops > kMostHops) return std::nullopt;
  if (const auto top = table_.find_top(file, name)) return thing(*top);
  if (const Found found = find_handed_on(file, name, hops)) return found;
  return find_in_barrels(file, name, hops);
}

NameResolver::Found NameResolver::find_handed_on(FileId file, std::string_view name,
                                                 int hops) const {
  if (hops > kMostHops) return std::nullopt;
  for (const Binding& binding : scopes_.bindings(file)) {
    if (binding.exported != name) continue;
    if (binding.target == file && binding.name == name) return whole(file, name);
    return follow(binding, hops);
  }
  return std::nullopt;
}

// What "export *" and its like hand on; two different things of one name are none.
NameResolver::Found NameResolver::find_in_barrels(FileId file, std::string_view name,
                                                  int hops) const {
  const Scopes::Barrel& barrel = scopes_.barrel(file);
  if (barrel.files.empty()) return std::nullopt;
  Found one;
  for (const DeclarationRef at : table_.find_all(name, kMostDeclarers)) {
    if (!std::ranges::binary_search(barrel.files, at.file)) continue;
    if (one) return std::nullopt;
    one = thing(at);
  }
  if (one) return one;
  for (const FileId named : barrel.named) {
    const Found found = find_handed_on(named, name, hops + 4);
    if (!found) continue;
    if (one && one->at != found->at) return std::nullopt;
    one = found;
  }
  return one;
}

// A type whose name stands for something of another file, too, has a part there.
std::optional<DeclarationRef> NameResolver::find_in_parts(DeclarationRef type,
                                                          std::string_view name) const {
  if (!members_in_scope_ || table_[type].container > 0) return std::nullopt;
  const std::string_view own = table_[type].name;
  const auto& bindings = scopes_.bindings(type.file);
  auto part = std::ranges::lower_bound(bindings, own, {}, &Binding::local);
  for (; part != bindings.end() && part->local == own; ++part) {
    if (part->name != own || part->target == type.file) continue;
    const auto other = table_.find_top(part->target, own);
    const auto member =
        other ? table_.find_member(*other, name) : table_.find_top(part->target, joined(own, name));
    if (member) return member;
  }
  return std::nullopt;
}

// A type may share its name with the object that holds what is no value's.
std::optional<DeclarationRef> NameResolver::find_in_twin(DeclarationRef type,
                                                         std::string_view name) const {
  if (!members_in_scope_ || table_[type].container > 0) return std::nullopt;
  for (const DeclarationRef twin : table_.find_tops(type.file, table_[type].name)) {
    if (twin == type || table_[twin].kind != DeclarationKind::kObject) continue;
    if (const auto member = find_member(twin, name)) return member;
  }
  return std::nullopt;
}

std::optional<DeclarationRef> NameResolver::find_member(DeclarationRef type,
                                                        std::string_view name) const {
  if (const auto own = find_own_member(type, name)) return own;
  std::optional<DeclarationRef> promised;
  for (const DeclarationRef ancestor : ancestors_of(type)) {
    const auto member = find_own_member(ancestor, name);
    if (member && !table_[*member].is_abstract) return member;
    if (!promised) promised = member;
  }
  return promised;
}

std::optional<DeclarationRef> NameResolver::find_own_member(DeclarationRef type,
                                                            std::string_view name) const {
  if (const auto own = table_.find_member(type, name)) return own;
  if (const auto other = find_in_parts(type, name)) return other;
  const auto companion = table_.find_member(type, kCompanion);
  if (!companion || table_[*companion].kind != DeclarationKind::kObject) return std::nullopt;
  return find_member(*companion, name);
}

// The nearest come first. While they are looked for, a type has none: bases may lead in circles.
const std::vector<DeclarationRef>& NameResolver::ancestors_of(DeclarationRef type) const {
  static const std::vector<DeclarationRef> kNone;
  if (lineages_->depth > kMostHops) return kNone;
  const auto [known, added] = lineages_->ancestors.try_emplace(type);
  if (!added) return known->second;
  ++lineages_->depth;
  std::vector<DeclarationRef> found{type};
  for (std::size_t at = 0; at < found.size(); ++at) {
    for (const std::string_view base : table_[found[at]].bases()) {
      if (found.size() > kMostAncestors) break;
      const auto parent = base_of(found[at], base);
      if (parent && std::ranges::find(found, *parent) == found.end()) found.push_back(*parent);
    }
  }
  --lineages_->depth;
  found.erase(found.begin());
  return lineages_->ancestors[type] = std::move(found);
}

std::optional<DeclarationRef> NameResolver::base_of(DeclarationRef type,
                                                    std::string_view base) const {
  NameResolver there(files_, scopes_, table_, type.file);
  there.lineages_ = lineages_;
  std::string_view rest = base;
  const Found root = there.find_known(rest, table_[type].container);
  if (!root) return std::nullopt;
  const NamedThing found = descend(*root, rest);
  if (found.kind != Kind::kDeclaration || !found.rest.empty()) return std::nullopt;
  return found.at;
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

// NOLINTEND(misc-no-recursion)

std::optional<FileId> NameResolver::module_named(std::string_view specifier) const {
  const auto& bindings = scopes_.bindings(file_);
  const auto found = std::ranges::lower_bound(bindings, specifier, {}, &Binding::local);
  const bool whole = found != bindings.end() && found->local == specifier && found->name.empty();
  return whole ? std::optional(found->target) : std::nullopt;
}

void NameResolver::close_over_wildcards() {
  closed_ = true;
  std::unordered_set<FileId> seen{file_};
  std::deque<FileId> open{file_};
  while (!open.empty() && seen.size() < kMostReachable) {
    const FileId at = open.front();
    open.pop_front();
    for (const Binding& binding : scopes_.bindings(at)) {
      const bool known = at == file_ || binding.exported == "*";
      if (is_wildcard(binding) && known && seen.insert(binding.target).second) {
        open.push_back(binding.target);
      }
    }
  }
  for (const Binding& binding : scopes_.bindings(file_)) {
    if (!opens_type(binding) || opened_.size() == kMostOpened) continue;
    const NamedThing type = follow(binding, 0);
    if (type.kind == Kind::kDeclaration && type.rest.empty()) opened_.push_back(type.at);
  }
  seen.erase(file_);
  reachable_.assign(seen.begin(), seen.end());
  std::ranges::sort(reachable_);
  for (const FileId file : reachable_) {
    const auto hands_on = [](const Binding& binding) {
      return !is_wildcard(binding) && !binding.exported.empty();
    };
    if (barrels_.size() < kMostBarrels && std::ranges::any_of(scopes_.bindings(file), hands_on)) {
      barrels_.push_back(file);
    }
  }
}

// What imports of all members of a type bring in.
NameResolver::Found NameResolver::find_in_opened_types(std::string_view name) const {
  Found one;
  for (const DeclarationRef type : opened_) {
    const auto member = find_member(type, name);
    if (!member) continue;
    if (one && one->at != *member) return std::nullopt;
    one = thing(*member);
  }
  return one;
}

NameResolver::Found NameResolver::find_through_wildcards(std::string_view name) {
  if (!closed_) close_over_wildcards();
  if (const Found member = find_in_opened_types(name)) return member;
  if (reachable_.empty()) return std::nullopt;
  Found one;
  for (const DeclarationRef at : table_.find_all(name, kMostDeclarers)) {
    if (!std::ranges::binary_search(reachable_, at.file)) continue;
    if (one) return std::nullopt;
    one = thing(at);
  }
  if (one) return one;
  for (const FileId barrel : barrels_) {
    const Found found = find_exported(barrel, name, 1);
    if (!found || found->kind != Kind::kDeclaration) continue;
    if (one && one->at != found->at) return std::nullopt;
    one = found;
  }
  return one;
}

// A name that an import of this file brings in from outside, in full; else nothing.
NameResolver::Found NameResolver::find_outside(std::string_view name) const {
  const bool absolute = name.starts_with('.');
  const std::string_view root = name.substr(0, name.find('.', absolute ? 1 : 0));
  const std::string_view rest = name.substr(root.size());
  for (const ImportFact& import : files_.facts(file_).imports) {
    if (import.module.empty()) continue;
    for (const ImportedName& named : import.names) {
      if (named.bound() != root) continue;
      std::string full = with_dots(import.module);
      if (named.name != "*" && named.name != "default") full.append(".").append(named.name);
      return NamedThing{Kind::kOutside, {}, full.append(rest)};
    }
    if (import.local == root && !root.empty()) {
      return NamedThing{Kind::kOutside, {}, std::string(import.module).append(rest)};
    }
    if (import.names.empty() && import.local.empty() && first_part(import.module) == root) {
      return NamedThing{Kind::kOutside, {}, std::string(name)};
    }
  }
  return std::nullopt;
}

}  // namespace kestrix::index
