#include "kestrix/index/names/scopes.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace kestrix::index {

bool is_wildcard(const Binding& binding) {
  return binding.local == "*" && (binding.name.empty() || binding.name == "*");
}

void Reached::close_over(const Scopes& scopes, FileId start, std::size_t most) {
  insert(start);
  for (std::size_t at = 0; at < files_.size() && files_.size() < most; ++at) {
    for (const auto& [target, handed_on] : scopes.wildcards(files_[at])) {
      if (at == 0 || handed_on) insert(target);
    }
  }
  is_cut_ = files_.size() >= most;
}

namespace {

constexpr std::size_t kMostBarrelFiles = 512;
constexpr std::size_t kMostNamedBarrels = 64;
// Resolvers look into the folders above a file; nobody puts one so deep.
constexpr std::ptrdiff_t kDeepest = 128;

}  // namespace

Scopes::Scopes(const IndexedFiles& files)
    : files_(files), slots_(std::make_unique<Slot[]>(files.size())) {
  for (const Language* language : languages()) {
    if (language->resolver != nullptr) resolvers_.try_emplace(language->resolver);
  }
}

bool Scopes::covers(FileId file) const {
  if (!files_.row(file).traits.has(Trait::kParsed)) return false;
  const Language* language = language_named(files_.language(file));
  return language != nullptr && language->resolver != nullptr;
}

const Resolver& Scopes::resolver_of(FileId file) const {
  LazyResolver& lazy = resolvers_.at(language_named(files_.language(file))->resolver);
  const auto make = language_named(files_.language(file))->resolver;
  std::call_once(lazy.once, [&] { lazy.resolver = make(files_); });
  return *lazy.resolver;
}

const Resolution& Scopes::of(FileId file) const {
  Slot& slot = slots_[file];
  std::call_once(slot.once, [&] {
    if (!covers(file)) return;
    if (std::ranges::count(files_.path(file), '/') > kDeepest) {
      slot.resolution.limited = true;
      return;
    }
    slot.resolution = resolver_of(file).resolve(file);
    std::ranges::stable_sort(slot.resolution.bindings, {}, &Binding::local);
  });
  return slot.resolution;
}

Scopes::Exports Scopes::gather_exports(FileId file) const {
  Exports found;
  std::unordered_map<FileId, std::size_t> known;
  std::unordered_set<FileId> all;
  for (const Binding& binding : bindings(file)) {
    const bool handed_on = binding.exported == "*";
    if (is_wildcard(binding)) {
      const auto place = known.try_emplace(binding.target, found.wildcards.size());
      if (place.second) found.wildcards.push_back({binding.target, false});
      found.wildcards[place.first->second].handed_on |= handed_on;
    } else {
      found.names |= !binding.exported.empty();
    }
    if (handed_on) {
      if (all.insert(binding.target).second) found.all.push_back(binding.target);
    } else if (!binding.exported.empty()) {
      found.by_name.push_back(&binding);
    }
  }
  std::ranges::stable_sort(found.by_name, {}, &Binding::exported);
  return found;
}

const Scopes::Exports& Scopes::exports(FileId file) const {
  Slot& slot = slots_[file];
  std::call_once(slot.exports_once, [&] { slot.exports = gather_exports(file); });
  return slot.exports;
}

const Binding* Scopes::handed_on(FileId file, std::string_view name) const {
  const auto& by_name = exports(file).by_name;
  const auto found = std::ranges::lower_bound(by_name, name, {}, &Binding::exported);
  return found == by_name.end() || (*found)->exported != name ? nullptr : *found;
}

// Barrels of barrels are gathered for each of them anew: what all may take together stays bounded.
Scopes::Barrel Scopes::gather_barrel(FileId file) const {
  std::unordered_set<FileId> seen{file};
  std::vector<FileId> open{file};
  Barrel barrel;
  for (std::size_t at = 0; at < open.size(); ++at) {
    const Exports& known = exports(open[at]);
    for (const FileId target : known.all) {
      if (seen.size() <= kMostBarrelFiles && seen.insert(target).second) open.push_back(target);
    }
    if (at == 0) continue;
    barrel.files.push_back(open[at]);
    if (!known.by_name.empty() && barrel.named.size() < kMostNamedBarrels)
      barrel.named.push_back(open[at]);
  }
  std::ranges::sort(barrel.files);
  std::ranges::sort(barrel.named);
  return barrel;
}

const Scopes::Barrel& Scopes::barrel(FileId file) const {
  Slot& slot = slots_[file];
  std::call_once(slot.barrel_once, [&] { slot.barrel = gather_barrel(file); });
  return slot.barrel;
}

const std::vector<Binding>& Scopes::bindings(FileId file) const { return of(file).bindings; }

}  // namespace kestrix::index
