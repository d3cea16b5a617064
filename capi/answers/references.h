#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/index/index.h"

namespace kestrix {

/// One row of the answer: all mentions of one target in one role by one file.
struct FoundReference {
  std::string_view source;
  std::uint32_t line = 0;  ///< of the first mention
  index::Role role = index::Role::kUses;
  std::string_view target;  ///< path of the file that declares the name; "" outside
  std::string name;         ///< "Type.member"; "" for the file itself
  std::uint64_t count = 0;

  friend auto operator<=>(const FoundReference&, const FoundReference&) = default;
};

struct ReferenceQuery {
  std::span<const std::string> to;    ///< globs of paths or names; empty: anything
  std::span<const std::string> from;  ///< globs of paths; empty: any file
  std::span<const std::string> roles;
  bool self = false;  ///< also all references within one file
};

/// Ascending by all columns. Views live as long as the index.
std::vector<FoundReference> find_references(const index::RepositoryIndex& index,
                                            const ReferenceQuery& query);

}  // namespace kestrix
