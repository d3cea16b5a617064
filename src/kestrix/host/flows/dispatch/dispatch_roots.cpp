#include "kestrix/host/flows/dispatch/dispatch_roots.h"

#include <algorithm>

#include "kestrix/host/flows/classes/family_signs.h"

namespace kestrix {
namespace {

using index::FileId;

// One of so many entry points comes from it, and no fewer than two.
constexpr std::size_t kBaseShare = 10;
constexpr std::size_t kLeastDerived = 2;

std::string_view stem_of(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  return name.substr(0, name.rfind('.'));
}

}  // namespace

std::vector<FileId> headers_of(const CodeEvidence& evidence, FileId file) {
  std::vector<FileId> headers;
  const std::string_view path = evidence.path(file);
  if (is_header(path)) return headers;
  for (const auto& edge : evidence.index().edges_from(file)) {
    const std::string_view other = evidence.path(edge.target);
    if (is_header(other) && stem_of(other) == stem_of(path)) headers.push_back(edge.target);
  }
  return headers;
}

// Where it is named; where no reference shows that, what is named.
void Seen::take(const CodeEvidence& evidence, const Naming& naming, FileId named) {
  files.insert(named);
  declarations += naming.declarations;
  const FileId shown = naming.line > 0 ? naming.from : naming.to;
  at.push_back({std::string(evidence.path(shown)), naming.line, {}});
}

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
  take_headers();
}

void DispatchRoots::take_headers() {
  for (const FileId root : files_) {
    for (const FileId header : headers_of(evidence_, root)) {
      if (!is_root_[header]) headers_.push_back({header, root});
    }
  }
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
