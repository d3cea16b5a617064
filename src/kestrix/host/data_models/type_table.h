#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "kestrix/host/data_models/data_types.h"

namespace kestrix {

/// Whether a member can be called.
inline bool is_method(const index::DeclarationView& row) {
  return row.kind == index::DeclarationKind::kMethod ||
         row.kind == index::DeclarationKind::kFunction;
}

/// A method of so few lines hands out or sets what the type holds, by all that is seen of it alone;
/// a longer one does work.
inline constexpr std::uint32_t kAccessorLines = 5;
inline bool is_accessor(const index::DeclarationView& row) {
  return row.last_line - row.line < kAccessorLines;
}

/// The product's types with their members, and which type each declaration belongs to.
class TypeTable {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  /// Linear in the declarations.
  explicit TypeTable(const CodeEvidence& evidence);

  /// The types, with nothing but their members counted; ascending. Only once.
  std::vector<DataType> take() { return std::move(types_); }

  /// The place, among the types, of the one that a declaration, counted from one, belongs to;
  /// `kNone` for 0 and for what belongs to none.
  std::uint32_t type_of(index::FileId file, std::uint32_t declaration) const {
    return declaration == 0 ? kNone : owner_[first_[file] + declaration - 1];
  }

 private:
  void add(index::FileId file, std::span<const index::DeclarationView> rows, std::uint32_t place);
  void add_methods_outside();
  void count_member(std::uint32_t owner, const index::DeclarationView& row);

  const CodeEvidence& evidence_;
  std::vector<DataType> types_;
  std::vector<std::uint32_t> first_;  // by file: where its declarations begin in `owner_`
  std::vector<std::uint32_t> owner_;  // by declaration
};

}  // namespace kestrix
