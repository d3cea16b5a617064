#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "kestrix/text/ascii.h"

namespace kestrix {

using Names = std::span<const std::string_view>;

/// Whether `name` is one of `names`, which hold no capital, in any case.
inline bool is_among(Names names, std::string_view name) {
  return std::ranges::any_of(names, [name](auto known) { return ascii::equals(name, known); });
}

/// Names that hold no capital, of which every folder of every path is asked: most are turned away
/// by their length and their first letter.
template <std::size_t N>
class NameSet {
 public:
  constexpr explicit NameSet(const std::string_view (&names)[N]) {  // NOLINT: as a list is written
    for (std::size_t at = 0; at < N; ++at) {
      names_[at] = names[at];
      lengths_ |= length_bit(names[at]);
      firsts_ |= first_bit(names[at]);
    }
  }

  bool has(std::string_view name) const {
    const bool may_be = (lengths_ & length_bit(name)) != 0 && (firsts_ & first_bit(name)) != 0;
    return may_be && is_among(names_, name);
  }

 private:
  static constexpr std::uint64_t length_bit(std::string_view name) {
    return std::uint64_t{1} << (name.size() % 64);
  }
  // Capital and small letters differ above these bits.
  static constexpr std::uint32_t first_bit(std::string_view name) {
    return std::uint32_t{1} << (name.empty() ? 0U : static_cast<unsigned char>(name[0]) % 32U);
  }

  std::array<std::string_view, N> names_{};
  std::uint64_t lengths_ = 0;
  std::uint32_t firsts_ = 0;
};

template <std::size_t N>
constexpr NameSet<N> name_set(const std::string_view (&names)[N]) {  // NOLINT
  return NameSet<N>(names);
}

template <std::size_t N>
bool is_among(const NameSet<N>& names, std::string_view name) {
  return names.has(name);
}

/// Calls `visit(piece, folder)` for each folder of a path from the top: its name, and the path up
/// to it. Ends when `visit` gives false.
template <class Visit>
void for_each_folder_down(std::string_view path, Visit visit) {
  for (std::size_t begin = 0, slash = 0; (slash = path.find('/', begin)) != std::string_view::npos;
       begin = slash + 1) {
    if (!visit(path.substr(begin, slash - begin), path.substr(0, slash))) return;
  }
}

}  // namespace kestrix
