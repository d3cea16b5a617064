#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/languages/resolver.h"
#include "kestrix/store/facts_codec.h"
#include "kestrix/store/text_blocks.h"

namespace kestrix::index {

/// One declaration of the repository.
struct DeclarationRef {
  FileId file = 0;
  std::uint32_t place = 0;  ///< among those of its file, from zero

  friend auto operator<=>(const DeclarationRef&, const DeclarationRef&) = default;
};

/// All declarations of a repository, by file and by name. Filled file by file, then only read, from
/// several threads.
class DeclarationTable {
 public:
  explicit DeclarationTable(std::size_t files) : ranges_(files) {}

  /// Takes over a copy of the encoded declarations of a file; each file once.
  void add(FileId file, std::string_view encoded);

  std::size_t size() const { return rows_.size(); }
  std::span<const DeclarationView> of(FileId file) const;
  const DeclarationView& operator[](DeclarationRef at) const { return of(at.file)[at.place]; }

  /// The declaration of that name that stands in no other one but namespaces; types come before
  /// others of the same name, and definitions before what is only declared. None when there is
  /// none.
  std::optional<DeclarationRef> find_top(FileId file, std::string_view name) const;
  /// All of them, in that order; at most so many.
  std::vector<DeclarationRef> find_tops(FileId file, std::string_view name,
                                        std::size_t most = SIZE_MAX) const;
  /// The member of that name which the declaration, a type or namespace, holds itself.
  std::optional<DeclarationRef> find_member(DeclarationRef holder, std::string_view name) const;
  /// All that other files can reach under that name at the top of a file, by file; for a name that
  /// more than `most` files declare, none.
  std::vector<DeclarationRef> find_all(std::string_view name, std::size_t most) const;
  /// The same with all that a file declares under the name; for more than `most` in all, none.
  std::vector<DeclarationRef> find_each(std::string_view name, std::size_t most) const;

 private:
  struct Range {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };
  struct Named {
    std::uint32_t holder;  // from one; 0 for the top
    std::uint32_t place;
  };

  std::uint32_t holder_of(std::span<const DeclarationView> rows, std::uint32_t place) const;
  std::span<const Named> named(FileId file, std::uint32_t holder, std::string_view name) const;
  void order_by_file() const;
  void order_by_name() const;

  TextBlocks texts_;
  std::vector<DeclarationView> rows_;
  std::vector<Range> ranges_;
  mutable std::once_flag by_file_once_;
  mutable std::once_flag by_name_once_;
  mutable std::vector<Named> by_file_;  // by holder and name, within the range of each file
  mutable std::vector<std::pair<std::uint64_t, DeclarationRef>> by_name_;  // by the name's hash
};

}  // namespace kestrix::index
