#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/index/names/named_thing.h"
#include "kestrix/index/names/scopes.h"
#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/index/tables/indexed_files.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Finds what the names of one file stand for: through the import that brought a name in, through
/// re-exports to the file that declares it, through the package's own scope, and for members
/// through inheritance. What several files declare, and no import decides, stands for nothing.
///
/// For one file, on one thread; what it is made of is shared.
class NameResolver {
 public:
  NameResolver(const IndexedFiles& files, const Scopes& scopes, const DeclarationTable& table,
               FileId file);

  /// What `name` ("a.b.C") stands for where the declaration `within` (from one, 0: none) holds it.
  /// In the place of a type a member of another kind is not meant.
  NamedThing resolve(std::string_view name, std::uint32_t within, bool as_type = false);

  /// The file that an import of this text, as it is written, leads to here.
  std::optional<FileId> module_named(std::string_view specifier) const;

  /// Whether a name that nothing stands for is a type or constant from outside, to judge by how it
  /// is written and by what the repository declares.
  bool looks_outside(std::string_view name) const;

  /// Whether what wildcards make known here was too much to look through.
  bool is_limited() const { return is_cut_ || (reached_ && reached_->is_cut()); }

 private:
  using Found = std::optional<NamedThing>;

  // A chain of re-exports is followed so far, and of types that need each other's ancestors.
  static constexpr int kMostHops = 16;
  // A name that more files declare says nothing by itself.
  static constexpr std::size_t kMostDeclarers = 64;

  // Shared with those that find the bases of types in other files.
  struct Lineages {
    std::map<DeclarationRef, std::vector<DeclarationRef>> ancestors;
    int depth = 0;
  };

  NamedThing resolve_own(std::string_view name, std::uint32_t within) const;
  Found resolve_root(std::string_view& rest, std::uint32_t within, bool as_type);
  Found find_known(std::string_view& rest, std::uint32_t within, bool as_type = false) const;
  Found find_among_members(std::string_view name, std::uint32_t within, bool as_type) const;
  Found find_in_nameless(std::string_view name, std::uint32_t within) const;
  Found find_in_extended(std::string_view name, std::uint32_t within, bool as_type) const;
  Found find_elsewhere(std::string_view name, DeclarationRef here) const;
  std::optional<DeclarationRef> find_in_parts(DeclarationRef type, std::string_view name) const;
  Found find_bound(std::string_view& rest) const;
  Found find_through_wildcards(std::string_view name);
  Found find_in_opened_types(std::string_view name) const;
  void order_imports();
  Found find_outside(std::string_view name);
  NamedThing descend(NamedThing from, std::string_view rest) const;
  Found find_exported(FileId file, std::string_view name, int hops) const;
  Found find_handed_on(FileId file, std::string_view name, int hops) const;
  Found find_in_barrels(FileId file, std::string_view name, int hops) const;
  NamedThing follow(const Binding& binding, int hops) const;
  std::optional<DeclarationRef> find_assigned(DeclarationRef holder, std::string_view name) const;
  std::optional<DeclarationRef> find_member(DeclarationRef type, std::string_view name) const;
  std::optional<DeclarationRef> find_in_twin(DeclarationRef type, std::string_view name) const;
  std::optional<DeclarationRef> find_own_member(DeclarationRef type, std::string_view name) const;
  const std::vector<DeclarationRef>& ancestors_of(DeclarationRef type) const;
  std::optional<DeclarationRef> base_of(DeclarationRef type, std::string_view base) const;
  void close_over_wildcards();

  const IndexedFiles& files_;
  const Scopes& scopes_;
  const DeclarationTable& table_;
  FileId file_;
  std::shared_ptr<Lineages> lineages_ = std::make_shared<Lineages>();
  bool members_in_scope_ = false;
  bool capital_types_ = false;
  bool paths_outside_ = false;
  std::optional<Reached> reached_;  // by wildcards; made when one is first asked
  std::vector<FileId> barrels_;     // of those the ones that hand names on
  struct Import {
    const ImportFact* import;
    const ImportedName* name;  // null: the import binds the module as a whole
  };
  // By the names that they bind; made when one is first looked for.
  std::optional<std::unordered_map<std::string_view, Import, SeededHash>> imports_;
  bool is_cut_ = false;                 // there are more of the next ones, or of barrels
  std::vector<DeclarationRef> opened_;  // types whose members are known by their names
};

}  // namespace kestrix::index
