#pragma once

#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// Tells types that implement an interface from those that only happen to have its one method.
///
/// In Go a type says nothing of the interfaces that it satisfies, and many have a method Name. Of
/// an interface with one method, types of many packages count only where one package imports the
/// other.
class Chance {
 public:
  explicit Chance(const CodeEvidence& evidence);

  /// Takes out of a type's implementers those that are ones by chance.
  void leave_out(index::DeclarationRef type,
                 std::vector<index::DeclarationRef>& implementers) const;

 private:
  std::string_view folder(index::DeclarationRef type) const;
  bool related(index::DeclarationRef type, index::DeclarationRef implementer) const;

  const CodeEvidence& evidence_;
  std::set<std::pair<std::string_view, std::string_view>> imports_;  // between folders
};

}  // namespace kestrix
