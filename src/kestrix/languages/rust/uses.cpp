#include "kestrix/languages/rust/uses.h"

#include <algorithm>

#include "kestrix/languages/rust/resolver.h"

namespace kestrix::index {
namespace {

std::string_view bound(const RustUses::Use& use) {
  return use.name->name == "*" ? std::string_view("*") : std::string_view(use.name->bound());
}

std::string_view exported(const RustUses::Use& use) { return use.name->exported; }

}  // namespace

RustUses::RustUses(const FileTable& files)
    : files_(files), slots_(std::make_unique<Slot[]>(files.size())) {}

const RustUses::Slot& RustUses::slot(FileId file) const {
  Slot& slot = slots_[file];
  std::call_once(slot.once, [&] {
    for (const ImportFact& import : files_.facts(file).imports) {
      if (static_cast<RustImport>(import.form) != RustImport::kUse) continue;
      for (const ImportedName& name : import.names) {
        slot.by_bound.push_back({&import, &name, slot.by_bound.size()});
        if (!name.exported.empty()) slot.by_exported.push_back(slot.by_bound.back());
      }
    }
    std::ranges::stable_sort(slot.by_bound, {}, bound);
    std::ranges::stable_sort(slot.by_exported, {}, exported);
  });
  return slot;
}

std::span<const RustUses::Use> RustUses::binding(FileId file, std::string_view name) const {
  const auto found = std::ranges::equal_range(slot(file).by_bound, name, {}, bound);
  return {found.begin(), found.end()};
}

std::span<const RustUses::Use> RustUses::handing_on(FileId file, std::string_view name) const {
  const auto found = std::ranges::equal_range(slot(file).by_exported, name, {}, exported);
  return {found.begin(), found.end()};
}

}  // namespace kestrix::index
