#pragma once

#include <cstdint>
#include <string_view>

namespace kestrix {

/// What shows that a path is a test's.
struct TestSign {
  enum class Kind : std::uint8_t { kNone, kFolder, kName };
  Kind kind = Kind::kNone;
  std::string_view folder{};  ///< of kFolder: the path up to the folder that decided
};

/// Judged from the top: the first folder that decides does, the name only where none does.
TestSign test_sign(std::string_view path);

}  // namespace kestrix
