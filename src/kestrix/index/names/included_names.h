#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/index/names/name_resolver.h"
#include "kestrix/index/names/scopes.h"
#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/index/tables/indexed_files.h"

namespace kestrix::index {

/// Finds what names stand for in a file that knows others by including their texts: what the file
/// or any that it includes declares, through as many files as it takes, nearest namespace first. A
/// name that leads to what is only declared there stands for its one definition, where there is
/// one. What several files declare, and nothing decides, stands for nothing.
///
/// For one file, on one thread; what it is made of is shared.
class IncludedNames {
 public:
  IncludedNames(const IndexedFiles& files, const Scopes& scopes, const DeclarationTable& table,
                FileId file)
      : files_(files), scopes_(scopes), table_(table), file_(file) {}

  /// What `name` ("a.b.C") stands for where the declaration `within` (from one, 0: none) holds it.
  NamedThing resolve(std::string_view name, std::uint32_t within);

  /// Whether the files that it includes were too many to look through.
  bool is_limited() const { return included_ && included_->is_cut(); }

 private:
  using Found = std::optional<DeclarationRef>;

  Found find(std::string_view& rest, std::uint32_t within);
  Found find_around(std::string_view name, std::uint32_t within);
  Found find_included(std::string_view name, std::string_view space, bool exactly);
  Found find_announced(std::string_view name, std::string_view space);
  bool announces(std::string_view name);
  Found find_qualified(std::string_view& rest);
  Found find_member(DeclarationRef type, std::string_view name);
  Found find_own_member(DeclarationRef type, std::string_view name) const;
  const std::vector<DeclarationRef>& ancestors_of(DeclarationRef type);
  Found base_of(DeclarationRef type, std::string_view base);
  Found owner_of(std::uint32_t holder);
  std::string_view descend(DeclarationRef& at, std::string_view rest);
  DeclarationRef behind_alias(DeclarationRef at);
  DeclarationRef definition_of(DeclarationRef at) const;

  const IndexedFiles& files_;
  const Scopes& scopes_;
  const DeclarationTable& table_;
  FileId file_;
  std::optional<Reached> included_;                              // made when one is first asked
  std::optional<std::set<std::string, std::less<>>> announced_;  // likewise
  std::unordered_map<std::uint32_t, Found> owners_;
  std::map<DeclarationRef, std::vector<DeclarationRef>> ancestors_;
  int depth_ = 0;
};

}  // namespace kestrix::index
