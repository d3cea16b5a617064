#include "kestrix/index/scopes.h"

#include <algorithm>

namespace kestrix::index {

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
    slot.resolution = resolver_of(file).resolve(file);
    std::ranges::stable_sort(slot.resolution.bindings, {}, &Binding::local);
  });
  return slot.resolution;
}

const std::vector<Binding>& Scopes::bindings(FileId file) const { return of(file).bindings; }

}  // namespace kestrix::index
