#include "kestrix/host/flows/dispatch_roots.h"

namespace kestrix {
namespace {

using index::FileId;

// One of so many entry points comes from it, and no fewer than two.
constexpr std::size_t kBaseShare = 10;
constexpr std::size_t kLeastDerived = 2;

}  // namespace

DispatchRoots::DispatchRoots(const CodeEvidence& evidence, std::span<const FileId> roots)
    : evidence_(evidence),
      files_(roots.begin(), roots.end()),
      is_root_(evidence.index().files().size()) {
  std::size_t product = 0;
  for (const FileId root : files_) {
    is_root_[root] = true;
    product += evidence_.is_product(root) ? 1U : 0U;
  }
  of_product_ = product * 2 >= files_.size();
  is_base_ = bases();
}

std::vector<bool> DispatchRoots::bases() const {
  std::map<FileId, std::set<FileId>> derived;
  for (const FileId root : files_) {
    for (const auto& to : evidence_.index().references_from(root)) {
      const bool known = to.declaration > 0 && to.target != index::IndexedReference::kOutside;
      if (!known || !kSubtyping.has(to.role) || to.target == root) continue;
      if (is_root_[to.target]) derived[to.target].insert(root);
    }
  }
  std::vector<bool> is_base(is_root_.size());
  for (const auto& [file, files] : derived) {
    is_base[file] = files.size() >= kLeastDerived && files.size() * kBaseShare >= files_.size();
  }
  return is_base;
}

bool DispatchRoots::may_dispatch(FileId file) const {
  if (is_root_[file]) return is_base_[file];
  if (evidence_.index().files()[file].document) return false;
  return of_product_ ? evidence_.is_product(file) : !evidence_.is_test(file);
}

}  // namespace kestrix
