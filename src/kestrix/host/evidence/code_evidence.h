#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/reason.h"
#include "kestrix/host/wiki_generator.h"
#include "kestrix/index/index.h"

namespace kestrix {

/// A set of the roles in which a file names something.
class RoleSet {
 public:
  constexpr RoleSet(std::initializer_list<index::Role> roles) {  // NOLINT: a set is written as one
    for (const index::Role role : roles) bits_ |= bit(role);
  }
  constexpr bool has(index::Role role) const { return (bits_ & bit(role)) != 0; }

 private:
  static constexpr std::uint32_t bit(index::Role role) {
    return 1U << static_cast<std::uint32_t>(role);
  }
  std::uint32_t bits_ = 0;
};

inline constexpr RoleSet kSubtyping{index::Role::kExtends, index::Role::kImplements};
inline constexpr RoleSet kEveryRole{
    index::Role::kExtends, index::Role::kImplements, index::Role::kConstructs,
    index::Role::kCalls,   index::Role::kType,       index::Role::kThrows,
    index::Role::kCatches, index::Role::kAnnotates,  index::Role::kLists,
    index::Role::kString,  index::Role::kUses};

/// Who names what, asked from the side of what is named. Views the index; built once for an answer,
/// in time linear in the references.
class CodeEvidence {
 public:
  explicit CodeEvidence(const WikiGenerator& generator);

  const index::RepositoryIndex& index() const { return index_; }
  std::string_view path(index::FileId file) const { return index_.files()[file].path; }

  /// Whether the file is the product itself: no test, sample, tool, migration, documentation, and
  /// neither generated nor another project's.
  bool is_product(index::FileId file) const { return parts_.is_product(file); }
  bool is_test(index::FileId file) const { return parts_.is_test(file); }
  /// What else it is.
  Roles roles(index::FileId file) const { return parts_.roles(file); }
  std::size_t product_count() const { return product_count_; }

  const index::DeclarationView& operator[](index::DeclarationRef at) const {
    return index_.declarations()[at];
  }
  Place place_of(index::DeclarationRef at) const;
  Place place_of(const index::IndexedReference& reference) const;  ///< where it names its target

  /// All references to a declaration, or to what a file declares and the file itself; by source.
  std::span<const std::uint32_t> references_to(index::DeclarationRef at) const;
  std::span<const std::uint32_t> references_to(index::FileId file) const;
  const index::IndexedReference& reference(std::uint32_t at) const {
    return index_.references()[at];
  }

  /// The product files, other than its own, that name the declaration in one of the roles;
  /// ascending.
  std::vector<index::FileId> files_naming(index::DeclarationRef at, RoleSet roles) const;
  /// The product's types that name it as a base; ascending.
  std::vector<index::DeclarationRef> subtypes(index::DeclarationRef at) const;
  /// The files whose edges lead to a file: product files and tests apart.
  std::uint32_t product_dependents(index::FileId file) const { return product_dependents_[file]; }
  std::uint32_t test_dependents(index::FileId file) const { return test_dependents_[file]; }

 private:
  void order_references();

  const index::RepositoryIndex& index_;
  const FileParts& parts_;
  std::size_t product_count_ = 0;
  std::vector<std::uint32_t> slots_;  // by file: the first of its declarations' slots
  std::vector<std::uint32_t> first_;  // by slot: where its references begin
  std::vector<std::uint32_t> by_target_;
  std::vector<std::uint32_t> product_dependents_;
  std::vector<std::uint32_t> test_dependents_;
};

}  // namespace kestrix
