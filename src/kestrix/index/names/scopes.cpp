#include "kestrix/index/names/scopes.h"

#include <algorithm>
#include <unordered_set>

namespace kestrix::index {
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

// Barrels of barrels are gathered for each of them anew: what all may take together stays bounded.
Scopes::Barrel Scopes::gather_barrel(FileId file) const {
  std::unordered_set<FileId> seen{file};
  std::vector<FileId> open{file};
  Barrel barrel;
  for (std::size_t at = 0; at < open.size(); ++at) {
    bool named = false;
    for (const Binding& binding : bindings(open[at])) {
      const bool all = binding.exported == "*";
      named |= !all && !binding.exported.empty();
      if (all && seen.size() <= kMostBarrelFiles && seen.insert(binding.target).second) {
        open.push_back(binding.target);
      }
    }
    if (at == 0) continue;
    barrel.files.push_back(open[at]);
    if (named && barrel.named.size() < kMostNamedBarrels) barrel.named.push_back(open[at]);
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
