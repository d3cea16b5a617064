#include <algorithm>
#include <utility>

#include "kestrix/index/names/name_resolver.h"

namespace kestrix::index {
namespace {

using Kind = NamedThing::Kind;

constexpr std::size_t kMostAncestors = 64;
constexpr std::size_t kMostTwins = 8;  // declarations of one name in a file
// An object in a type whose members are known as the type's own.
constexpr std::string_view kCompanion = "Companion";

bool fits(DeclarationKind kind, bool as_type) {
  return !as_type || (kind != DeclarationKind::kField && kind != DeclarationKind::kMethod);
}

}  // namespace

NameResolver::Found NameResolver::find_among_members(std::string_view name, std::uint32_t within,
                                                     bool as_type) const {
  if (!members_in_scope_) return std::nullopt;
  const auto mine = table_.of(file_);
  for (std::uint32_t holder = within; holder > 0 && holder <= mine.size();
       holder = mine[holder - 1].container) {
    const DeclarationRef at{file_, holder - 1};
    if (!is_type(mine[holder - 1].kind)) continue;
    const auto member = find_member(at, name);
    if (member && fits(table_[*member].kind, as_type)) return NamedThing::declaration(*member);
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
      if (member) return descend(NamedThing::declaration(*member), behind(name, root.size()));
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
  if (const auto here = table_.find_top(file_, joined(owner, name)))
    return NamedThing::declaration(*here);
  const Found type = find_bound(owner);
  if (!type || !owner.empty() || type->kind != Kind::kDeclaration ||
      !is_type(table_[type->at].kind))
    return std::nullopt;
  const auto member = find_member(type->at, name);
  if (!member || !fits(table_[*member].kind, as_type)) return std::nullopt;
  return NamedThing::declaration(*member);
}

// NOLINTBEGIN(misc-no-recursion): each step is a hop, and kMostHops end it

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
  for (const DeclarationRef twin : table_.find_tops(type.file, table_[type].name, kMostTwins)) {
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
  if (const auto member = table_.find_member(*companion, name)) return member;
  // It may extend the very type whose companion it is: its bases' companions are not asked.
  for (const DeclarationRef ancestor : ancestors_of(*companion)) {
    if (const auto member = table_.find_member(ancestor, name)) return member;
  }
  return std::nullopt;
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

// NOLINTEND(misc-no-recursion)

}  // namespace kestrix::index
