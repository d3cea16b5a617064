#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// That one file names another, all its references to it taken together.
struct Naming {
  index::FileId from = 0;
  index::FileId to = 0;
  std::uint32_t line = 0;          ///< the first reference's; 0 where only an import shows it
  std::uint32_t declarations = 0;  ///< of `to`, each counted once
  bool used = false;               ///< makes use of it, not only imports it
  bool names = false;  ///< calls, makes, lists, passes on: more than to say what type something has
  bool derives = false;  ///< something in `from` extends or implements something in `to`
};

/// Who names whom among the files of a repository: references, and imports where no reference shows
/// what they are for. Tests are left out. Built in time linear in both.
class NamingGraph {
 public:
  explicit NamingGraph(const CodeEvidence& evidence);

  /// By the named file.
  std::span<const Naming> from(index::FileId file) const {
    return std::span(by_source_)
        .subspan(first_from_[file], first_from_[file + 1] - first_from_[file]);
  }
  /// By the naming file.
  std::span<const Naming> to(index::FileId file) const {
    return std::span(by_target_).subspan(first_to_[file], first_to_[file + 1] - first_to_[file]);
  }

 private:
  void take_references(index::FileId file);
  void take_imports(index::FileId file, std::size_t first);
  void order_by_target();

  const CodeEvidence& evidence_;
  std::vector<Naming> by_source_;
  std::vector<Naming> by_target_;
  std::vector<std::uint32_t> first_from_;
  std::vector<std::uint32_t> first_to_;
};

}  // namespace kestrix
