#include "kestrix/index/edges/reference_builder.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "kestrix/index/names/included_names.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/ascii.h"
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

bool names_a_type(Role role) {
  return role == Role::kExtends || role == Role::kImplements || role == Role::kType ||
         role == Role::kConstructs || role == Role::kAnnotates;
}

// What is called of an object tells something only if it is one of a framework's names.
bool is_framework_name(std::string_view language, std::string_view name) {
  return std::ranges::any_of(framework_names(language), [&](const FrameworkName& row) {
    if (!name.ends_with(row.name)) return false;
    const std::size_t before = name.size() - row.name.size();
    return before == 0 || std::string_view(":.@").find(name[before - 1]) != std::string_view::npos;
  });
}

// "Table<Type>": in the place of a type it says what is stored.
bool is_list_of_models(std::string_view language, const Mention& mention) {
  return mention.role == Role::kType &&
         known_as(language, Known::kModelList, mention.name) != nullptr;
}

std::string without_mark(const std::string& name) {
  const bool marked = std::string_view(":.@").find(name.front()) != std::string_view::npos;
  return marked ? name.substr(1) : name;
}

// "object.member", whatever the object is.
bool is_of_value(std::string_view name) {
  return name.find('.') != std::string_view::npos && ascii::is_lower(name.front());
}

// A name that nothing declares and no import brings in.
bool tells_outside(std::string_view language, const Mention& mention) {
  const bool call = mention.role == Role::kCalls && !is_of_value(mention.name) &&
                    is_framework_name(language, mention.name);
  return call || may_be_built_in(mention.role) || is_list_of_models(language, mention);
}

// What the declaration turns out to be corrects what its mention looked like.
Role role_towards(DeclarationKind kind, bool partial, Role role) {
  const bool call = role == Role::kCalls || role == Role::kConstructs || role == Role::kThrows;
  if (partial && call) return Role::kUses;
  const bool makes = role == Role::kCalls || role == Role::kConstructs;
  if (makes && kind == DeclarationKind::kMember) return Role::kConstructs;
  if (role == Role::kCalls && is_type(kind)) return Role::kConstructs;
  if (role == Role::kConstructs && !is_type(kind)) return Role::kCalls;
  const bool contract = kind == DeclarationKind::kInterface || kind == DeclarationKind::kTrait ||
                        kind == DeclarationKind::kProtocol;
  if (role == Role::kExtends && contract) return Role::kImplements;
  const bool space = kind == DeclarationKind::kModule;
  if (role == Role::kImplements && !contract && !space) return Role::kExtends;
  return role;
}

}  // namespace

ReferenceBuilder::Built ReferenceBuilder::build(FileId file) const {
  Built built;
  NameResolver names(files_, scopes_, table_, file);
  const std::string_view language = files_.language(file);
  const std::string_view folder = folder_of(files_.path(file));
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
                       : names.resolve(mention.name, mention.within, names_a_type(mention.role));
      const bool made = mention.role == Role::kCalls || mention.role == Role::kConstructs;
      const bool known =
          included && mention.role == Role::kCalls && is_framework_name(language, mention.name);
      if (thing.kind == Kind::kNothing && (tells_outside(language, mention) || known ||
                                           (made && names.looks_outside(mention.name)))) {
        thing = {Kind::kOutside, {}, without_mark(mention.name)};
      }
    }
    const bool own_file = thing.kind == Kind::kFile && thing.at.file == file;
    if (thing.kind == Kind::kNothing || own_file) continue;
    if (thing.kind == Kind::kOutside) {
      if (!counts_outside(mention.role) && !is_list_of_models(language, mention)) continue;
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
  built.limited = names.is_limited() || (included && included->is_limited());
  add_satisfied(file, built);
  return built;
}

// Nothing in the text names these, so they make no edges.
void ReferenceBuilder::add_satisfied(FileId file, Built& built) const {
  const auto rows = table_.of(file);
  const auto [satisfied, cut] = method_sets_.of(file);
  built.limited |= cut;
  if (satisfied.empty()) return;
  std::set<std::tuple<std::uint32_t, std::int64_t, std::uint32_t>> said;
  for (const StoredReference& to : built.references) {
    if (to.role == Role::kImplements) said.emplace(to.within, to.target, to.declaration);
  }
  for (const auto& [type, contract] : satisfied) {
    const std::int64_t target = files_.row(contract.file).id;
    if (said.contains({type + 1, target, contract.place + 1})) continue;
    StoredReference to{
        .role = Role::kImplements, .within = type + 1, .line = rows[type].line, .count = 1};
    to.target = target;
    to.declaration = contract.place + 1;
    built.references.push_back(std::move(to));
  }
}

}  // namespace kestrix::index
