#include "kestrix/index/names/included_names.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "kestrix/index/names/namespaces.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

// Files that one file includes, through others.
constexpr std::size_t kMostIncluded = 4'000;
// A name that is declared more often says nothing by itself.
constexpr std::size_t kMostDeclarations = 256;
constexpr int kMostSpaces = 6;  // namespaces that a name is written with
constexpr int kMostHops = 16;   // of aliases, and of types that need each other's ancestors
constexpr std::size_t kMostAncestors = 64;

std::string_view stem_of(std::string_view path) {
  const std::string_view name = base_name(path);
  return name.substr(0, std::min(name.rfind('.'), name.size()));
}

}  // namespace

NamedThing IncludedNames::resolve(std::string_view name, std::uint32_t within) {
  std::string_view rest = name;
  auto found = find(rest, within);
  if (!found) return {};
  rest = descend(*found, rest);
  const DeclarationRef at = definition_of(behind_alias(*found));
  return {NamedThing::Kind::kDeclaration, at, std::string(rest)};
}

// Takes what it has found the meaning of from the front of `rest`.
IncludedNames::Found IncludedNames::find(std::string_view& rest, std::uint32_t within) {
  const std::string_view root = first_part(rest);
  auto found = find_around(root, within);
  const std::string space = namespace_of(table_, file_, within);
  if (!found) found = find_included(root, space, false);
  if (!found) found = find_announced(root, space);
  if (found && table_[*found].kind != DeclarationKind::kModule) {
    rest = behind(rest, root.size());
    return found;
  }
  return find_qualified(rest);
}

// NOLINTBEGIN(misc-no-recursion): ancestors are looked for only once, and kMostHops deep

IncludedNames::Found IncludedNames::find_around(std::string_view name, std::uint32_t within) {
  const auto mine = table_.of(file_);
  for (std::uint32_t holder = within; holder > 0 && holder <= mine.size();
       holder = mine[holder - 1].container) {
    Found type = DeclarationRef{file_, holder - 1};
    if (!is_type(mine[holder - 1].kind)) type = owner_of(holder);
    if (!type) continue;
    if (const auto member = find_member(*type, name)) return member;
  }
  auto tops = table_.find_tops(file_, name);
  keep_nearest(table_, namespace_of(table_, file_, within), tops);
  return tops.empty() ? std::nullopt : Found(tops.front());
}

// What the included files declare under that name in `space` or, unless `exactly`, around it.
IncludedNames::Found IncludedNames::find_included(std::string_view name, std::string_view space,
                                                  bool exactly) {
  if (!included_) included_.emplace(files_.size()).close_over(scopes_, file_, kMostIncluded);
  auto found = table_.find_each(name, kMostDeclarations);
  std::erase_if(found, [&](DeclarationRef at) {
    return table_[at].kind == DeclarationKind::kModule || !included_->contains(at.file);
  });
  if (exactly) {
    std::ranges::copy(table_.find_tops(file_, name), std::back_inserter(found));
    std::erase_if(found, [&](DeclarationRef at) { return !is_in_namespace(table_, at, space); });
  } else {
    keep_nearest(table_, space, found);
  }
  keep_definitions(table_, found);
  const bool sure = !found.empty() && std::ranges::all_of(found, [&](DeclarationRef at) {
    return at.file == found.front().file;
  });
  return sure ? Found(found.front()) : std::nullopt;
}

// A type that the file only announces ("class Name;") and one file defines, included or not.
IncludedNames::Found IncludedNames::find_announced(std::string_view name, std::string_view space) {
  auto found = table_.find_each(name, kMostDeclarations);
  std::erase_if(found, [&](DeclarationRef at) {
    const std::string_view language = files_.language(at.file);
    const bool included = language == "c" || language == "cpp";
    const DeclarationKind kind = table_[at].kind;
    return !included || !is_type(kind) || kind == DeclarationKind::kAlias ||
           namespace_of(table_, at) != space;
  });
  if (found.size() != 1 || !announces(name)) return std::nullopt;
  return found.front();
}

// Whether the file names it outside of all functions and types, as nothing but announcements do.
bool IncludedNames::announces(std::string_view name) {
  if (!announced_) {
    announced_.emplace();
    const auto mine = table_.of(file_);
    for (Mention& mention : files_.mentions(file_)) {
      const bool outside = mention.within == 0 || mention.within > mine.size() ||
                           mine[mention.within - 1].kind == DeclarationKind::kModule;
      if (mention.role == Role::kUses && outside) announced_->insert(std::move(mention.name));
    }
  }
  return announced_->contains(name);
}

// "a::b::Name": what stands before the name are the namespaces that it stands in.
IncludedNames::Found IncludedNames::find_qualified(std::string_view& rest) {
  std::size_t at = rest.find('.');
  for (int parts = 0; parts < kMostSpaces && at != std::string_view::npos; ++parts) {
    const std::string_view space = rest.substr(0, at);
    const std::string_view name = first_part(rest.substr(at + 1));
    if (const auto found = find_included(name, space, true)) {
      rest = behind(rest, space.size() + 1 + name.size());
      return found;
    }
    at = rest.find('.', at + 1);
  }
  return std::nullopt;
}

IncludedNames::Found IncludedNames::find_member(DeclarationRef type, std::string_view name) {
  if (const auto own = find_own_member(type, name)) return own;
  for (const DeclarationRef ancestor : ancestors_of(type)) {
    if (const auto member = find_own_member(ancestor, name)) return member;
  }
  return std::nullopt;
}

IncludedNames::Found IncludedNames::find_own_member(DeclarationRef type,
                                                    std::string_view name) const {
  // Inside of a type its name stands for it rather than for what makes values of it.
  return name == table_[type].name ? Found(type) : table_.find_member(type, name);
}

// The nearest come first. While they are looked for, a type has none: bases may lead in circles.
const std::vector<DeclarationRef>& IncludedNames::ancestors_of(DeclarationRef type) {
  static const std::vector<DeclarationRef> kNone;
  if (depth_ > kMostHops) return kNone;
  const auto [known, added] = ancestors_.try_emplace(type);
  if (!added) return known->second;
  ++depth_;
  std::vector<DeclarationRef> found{type};
  for (std::size_t at = 0; at < found.size(); ++at) {
    if (table_[found[at]].kind == DeclarationKind::kAlias) continue;
    for (const std::string_view base : table_[found[at]].bases()) {
      if (found.size() > kMostAncestors) break;
      const auto parent = base_of(found[at], base);
      if (parent && std::ranges::find(found, *parent) == found.end()) found.push_back(*parent);
    }
  }
  --depth_;
  found.erase(found.begin());
  return ancestors_[type] = std::move(found);
}

// What the type's file includes, the one that names the type does, too.
IncludedNames::Found IncludedNames::base_of(DeclarationRef type, std::string_view base) {
  std::string_view rest = base;
  const std::string_view root = first_part(base);
  const std::string space = namespace_of(table_, type);
  auto tops = table_.find_tops(type.file, root);
  std::erase(tops, type);
  keep_nearest(table_, space, tops);
  Found found = tops.empty() ? find_included(root, space, false) : Found(tops.front());
  if (found && table_[*found].kind != DeclarationKind::kModule) {
    rest = behind(rest, root.size());
  } else {
    found = find_qualified(rest);
  }
  if (!found || !descend(*found, rest).empty()) return std::nullopt;
  const DeclarationRef at = behind_alias(*found);
  return at == type ? std::nullopt : Found(at);
}

// The type of a member that stands outside of it: "Type.member".
IncludedNames::Found IncludedNames::owner_of(std::uint32_t holder) {
  const std::string_view name = table_.of(file_)[holder - 1].name;
  const std::size_t joint = name.rfind('.');
  if (joint == std::string_view::npos || joint == 0) return std::nullopt;
  const auto [entry, fresh] = owners_.try_emplace(holder);
  if (!fresh) return entry->second;
  std::string_view rest = name.substr(0, joint);
  auto owner = find_included(first_part(rest), namespace_of(table_, file_, holder), false);
  if (owner) rest = behind(rest, first_part(rest).size());
  if (!owner) owner = find_qualified(rest);
  if (!owner || !descend(*owner, rest).empty() || !is_type(table_[*owner].kind)) {
    return std::nullopt;
  }
  owners_[holder] = owner;
  return owner;
}

// Goes from a type to its members; returns the parts of the name that lead no further.
std::string_view IncludedNames::descend(DeclarationRef& at, std::string_view rest) {
  while (!rest.empty() && is_type(table_[at].kind)) {
    const std::string_view part = first_part(rest);
    const auto member = find_member(behind_alias(at), part);
    if (!member) break;
    at = *member;
    rest = behind(rest, part.size());
  }
  return rest;
}

// NOLINTEND(misc-no-recursion)

// A second name of a type stands for the type, where that can be seen.
DeclarationRef IncludedNames::behind_alias(DeclarationRef at) {
  for (int hops = 0; hops < kMostHops && table_[at].kind == DeclarationKind::kAlias; ++hops) {
    const auto bases = table_[at].bases();
    if (bases.size() != 1) break;
    auto type = table_.find_top(at.file, bases.front());
    if (!type) type = find_included(bases.front(), {}, false);
    if (!type || *type == at) break;
    at = *type;
  }
  return at;
}

// Of what is only declared at a place, the one definition; else the place itself.
DeclarationRef IncludedNames::definition_of(DeclarationRef at) const {
  const DeclarationView& row = table_[at];
  if (!may_be_defined_elsewhere(row)) return at;
  auto found = table_.find_all(full_name(table_, at), kMostDeclarations);
  const std::string space = namespace_of(table_, at);
  std::erase_if(found, [&](DeclarationRef other) {
    return other.file == at.file || !defines(table_[other], row) ||
           namespace_of(table_, other) != space;
  });
  if (found.size() > 1) {
    const std::string_view stem = stem_of(files_.path(at.file));
    std::erase_if(found,
                  [&](DeclarationRef other) { return stem_of(files_.path(other.file)) != stem; });
  }
  return found.size() == 1 ? found.front() : at;
}

}  // namespace kestrix::index
