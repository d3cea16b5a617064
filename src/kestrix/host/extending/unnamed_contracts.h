#pragma once

#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// Contracts that one implements without naming them as a base: protocols of Python, whose methods
/// types may have, and structs of pointers to functions in C, of which one fills a value.
///
/// Linear in the references and declarations. Views the evidence.
class UnnamedContracts {
 public:
  explicit UnnamedContracts(const CodeEvidence& evidence);

  const std::set<index::DeclarationRef>& types() const { return types_; }
  /// What implements one of them, other than what names it as a base: the product's types or
  /// values; ascending.
  std::vector<index::DeclarationRef> implementers(index::DeclarationRef type) const;

 private:
  void collect_protocols();
  void collect_tables();
  void collect_methods();
  bool is_table(index::DeclarationRef type) const;
  std::vector<std::string_view> methods_of(index::DeclarationRef protocol) const;
  std::vector<index::DeclarationRef> shaped_like(index::DeclarationRef protocol) const;
  std::vector<index::DeclarationRef> values_of(index::DeclarationRef table) const;

  const CodeEvidence& evidence_;
  std::set<index::DeclarationRef> protocols_;
  std::set<index::DeclarationRef> types_;
  std::map<std::string_view, std::vector<index::DeclarationRef>> having_;  // types, by method
};

}  // namespace kestrix
