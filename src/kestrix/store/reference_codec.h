#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/facts/reference_role.h"

namespace kestrix::index {

/// Who names what, as it is stored with the file that does.
struct StoredReference {
  std::int64_t target = 0;        ///< the row of a file; 0: outside of the repository
  std::uint32_t declaration = 0;  ///< of the target, from one; 0: the file itself
  std::string name{};             ///< outside: its full name; of a file: what of it, "" for all
  Role role = Role::kUses;
  std::uint32_t within = 0;  ///< the source's declaration that holds it, from one; 0: none
  std::uint32_t line = 0;    ///< the first one's
  std::uint32_t count = 0;

  friend bool operator==(const StoredReference&, const StoredReference&) = default;
};

/// Sorts the references, joins those that differ in line and count alone, and encodes them; "" when
/// there are none.
std::string encode_references(std::vector<StoredReference> references);

/// The same with a name that views the encoded bytes.
struct ReferenceView {
  std::int64_t target = 0;
  std::uint32_t declaration = 0;
  std::string_view name{};
  Role role = Role::kUses;
  std::uint32_t within = 0;
  std::uint32_t line = 0;
  std::uint32_t count = 0;
};

/// The inverse. Throws `CorruptIndex` when `bytes` are no encoded references.
std::vector<ReferenceView> decode_references(std::string_view bytes);

}  // namespace kestrix::index
