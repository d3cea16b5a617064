#pragma once

#include <utility>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// Collects what the imports of one file lead to.
class Dependencies {
 public:
  explicit Dependencies(FileId source) : source_(source) {}

  /// A file's dependency on itself is none.
  void add(FileId target, double weight) {
    if (target != source_) resolution_.dependencies.push_back({target, weight});
  }
  /// A name that stands for something of another file.
  void bind(const Binding& binding) { resolution_.bindings.push_back(binding); }
  /// An import that looked local and led nowhere.
  void miss() { ++resolution_.unresolved; }
  /// Something is left out, for it would take too much.
  void limit() { resolution_.limited = true; }

  Resolution take() { return std::move(resolution_); }

 private:
  FileId source_;
  Resolution resolution_;
};

}  // namespace kestrix::index
