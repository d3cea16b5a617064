#include "kestrix/index/reference_builder.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "kestrix/index/included_names.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

using Kind = NamedThing::Kind;

// Of what lies outside only these tell something: which framework a type is made from, what is
// called or thrown.
bool counts_outside(Role role) {
  switch (role) {
    case Role::kType:
    case Role::kLists:
    case Role::kUses:
    case Role::kString:
      return false;
    default:
      return true;
  }
}

// A name that no import brings in and nothing declares: one of the language's own.
bool may_be_built_in(Role role) {
  return role <= Role::kImplements || role == Role::kThrows || role == Role::kCatches ||
         role == Role::kAnnotates;
}

// Whether the language's files include each other's texts.
bool reads_includes(std::string_view name) {
  const Language* language = language_named(name);
  return language != nullptr && language->code != nullptr && language->code->defined_elsewhere;
}

// Where imports bring in no names, of what is called outside that counts which says something.
bool calls_known(std::string_view language, const Mention& mention) {
  return mention.role == Role::kCalls &&
         std::ranges::any_of(framework_names(language), [&](const FrameworkName& row) {
           return mention.name.ends_with(row.name) &&
                  (mention.name.size() == row.name.size() ||
                   mention.name[mention.name.size() - row.name.size() - 1] == '.');
         });
}

// What the declaration turns out to be corrects what its mention looked like.
Role role_towards(DeclarationKind kind, bool partial, Role role) {
  const bool call = role == Role::kCalls || role == Role::kConstructs || role == Role::kThrows;
  if (partial && call) return Role::kUses;
  if (role == Role::kCalls && is_type(kind)) return Role::kConstructs;
  if (role == Role::kConstructs && !is_type(kind)) return Role::kCalls;
  const bool contract = kind == DeclarationKind::kInterface || kind == DeclarationKind::kTrait ||
                        kind == DeclarationKind::kProtocol;
  if (role == Role::kExtends && contract) return Role::kImplements;
  if (role == Role::kImplements && !contract) return Role::kExtends;
  return role;
}

}  // namespace

ReferenceBuilder::Built ReferenceBuilder::build(FileId file) const {
  Built built;
  NameResolver names(files_, scopes_, table_, file);
  const std::string_view folder = folder_of(files_.path(file));
  const std::string_view language = files_.language(file);
  std::optional<IncludedNames> included;
  if (reads_includes(language)) included.emplace(files_, scopes_, table_, file);
  for (const Mention& mention : files_.mentions(file)) {
    StoredReference to{.role = mention.role,
                       .within = mention.within,
                       .line = mention.line,
                       .count = mention.count};
    NamedThing thing;
    if (mention.role == Role::kString) {
      if (const auto module = names.module_named(mention.name)) {
        thing = {Kind::kFile, {*module, 0}, {}};
      } else if (auto found = strings_.resolve(mention.name, folder)) {
        thing = std::move(*found);
      }
    } else if (mention.role == Role::kReads) {
      thing = {Kind::kOutside, {}, mention.name};
    } else {
      thing = included ? included->resolve(mention.name, mention.within)
                       : names.resolve(mention.name, mention.within);
      const bool made = mention.role == Role::kCalls || mention.role == Role::kConstructs;
      if (thing.kind == Kind::kNothing &&
          (may_be_built_in(mention.role) || (made && names.looks_outside(mention.name)) ||
           (included && calls_known(language, mention)))) {
        thing = {Kind::kOutside, {}, mention.name.substr(mention.name.starts_with('.') ? 1 : 0)};
      }
    }
    if (thing.kind == Kind::kNothing) continue;
    if (thing.kind == Kind::kOutside) {
      if (!counts_outside(mention.role)) continue;
      to.name = std::move(thing.rest);
    } else {
      to.target = files_.row(thing.at.file).id;
      if (thing.kind == Kind::kDeclaration) {
        to.declaration = thing.at.place + 1;
        to.role = role_towards(table_[thing.at].kind, !thing.rest.empty(), mention.role);
        // A function's name that is not called hands the function over.
        const bool function = table_[thing.at].kind == DeclarationKind::kFunction;
        if (included && function && to.role == Role::kUses) to.role = Role::kLists;
      } else {
        to.name = std::move(thing.rest);
      }
      if (thing.at.file != file) {
        built.uses.push_back({thing.at.file, mention.count, mention.role == Role::kString});
      } else if (thing.kind == Kind::kDeclaration && thing.at.place + 1 == mention.within) {
        continue;  // a declaration that names itself
      }
    }
    built.references.push_back(std::move(to));
  }
  return built;
}

}  // namespace kestrix::index
