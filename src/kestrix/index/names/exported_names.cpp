#include <algorithm>

#include "kestrix/index/names/name_resolver.h"

namespace kestrix::index {
namespace {

using Kind = NamedThing::Kind;

// Files that wildcards make known to one file, and barrels among them that are asked for a name.
constexpr std::size_t kMostReachable = 4'000;
constexpr std::size_t kMostBarrels = 64;
constexpr std::size_t kMostOpened = 256;  // types whose members one file imports all

bool opens_type(const Binding& binding) { return binding.local == "*" && !is_wildcard(binding); }

}  // namespace

// NOLINTBEGIN(misc-no-recursion): each step is a hop, and kMostHops end it

NamedThing NameResolver::follow(const Binding& binding, int hops) const {
  if (binding.name.empty()) return NamedThing::file(binding.target);
  if (const Found found = find_exported(binding.target, binding.name, hops + 1)) return *found;
  const std::string_view root = first_part(binding.name);
  if (root.size() < binding.name.size()) {
    const Found holder = find_exported(binding.target, root, hops + 1);
    if (holder) return descend(*holder, behind(binding.name, root.size()));
  }
  return NamedThing::file(binding.target, binding.name);
}

NameResolver::Found NameResolver::find_exported(FileId file, std::string_view name,
                                                int hops) const {
  if (hops > kMostHops) return std::nullopt;
  if (const auto top = table_.find_top(file, name)) return NamedThing::declaration(*top);
  if (const Found found = find_handed_on(file, name, hops)) return found;
  return find_in_barrels(file, name, hops);
}

NameResolver::Found NameResolver::find_handed_on(FileId file, std::string_view name,
                                                 int hops) const {
  if (hops > kMostHops) return std::nullopt;
  const Binding* const binding = scopes_.handed_on(file, name);
  if (binding == nullptr) return std::nullopt;
  if (binding->target == file && binding->name == name) return NamedThing::file(file, name);
  return follow(*binding, hops);
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
    one = NamedThing::declaration(at);
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

// NOLINTEND(misc-no-recursion)

void NameResolver::close_over_wildcards() {
  reached_.emplace(files_.size()).close_over(scopes_, file_, kMostReachable);
  for (const Binding& binding : scopes_.bindings(file_)) {
    if (!opens_type(binding)) continue;
    is_cut_ |= opened_.size() == kMostOpened;
    if (opened_.size() == kMostOpened) break;
    const NamedThing type = follow(binding, 0);
    if (type.kind == Kind::kDeclaration && type.rest.empty()) opened_.push_back(type.at);
  }
  for (const FileId file : reached_->files()) {
    const bool barrel = file != file_ && scopes_.hands_on_names(file);
    if (!barrel) continue;
    is_cut_ |= barrels_.size() == kMostBarrels;
    if (barrels_.size() < kMostBarrels) barrels_.push_back(file);
  }
  std::ranges::sort(barrels_);
}

// What imports of all members of a type bring in.
NameResolver::Found NameResolver::find_in_opened_types(std::string_view name) const {
  Found one;
  for (const DeclarationRef type : opened_) {
    const auto member = find_member(type, name);
    if (!member) continue;
    if (one && one->at != *member) return std::nullopt;
    one = NamedThing::declaration(*member);
  }
  return one;
}

NameResolver::Found NameResolver::find_through_wildcards(std::string_view name) {
  if (!reached_) close_over_wildcards();
  if (const Found member = find_in_opened_types(name)) return member;
  if (reached_->files().size() < 2) return std::nullopt;
  Found one;
  for (const DeclarationRef at : table_.find_all(name, kMostDeclarers)) {
    if (!reached_->contains(at.file)) continue;
    if (one) return std::nullopt;
    one = NamedThing::declaration(at);
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

}  // namespace kestrix::index
