#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "kestrix/text/ascii.h"

namespace kestrix::index {

/// One custom of naming files.
struct FileNamePattern {
  enum class Part : std::uint8_t {
    kWhole,
    kPrefix,                ///< with something behind it
    kSuffix,                ///< with something before it
    kSuffixAfterLowerCase,  ///< "CartIT", but not "AUDIT"
  };
  Part part;
  std::string_view text;

  constexpr bool admits(std::string_view name) const {
    if (part == Part::kWhole) return name == text;
    if (name.size() <= text.size()) return false;
    if (part == Part::kPrefix) return name.starts_with(text);
    if (!name.ends_with(text)) return false;
    return part == Part::kSuffix || !ascii::is_upper(name[name.size() - text.size() - 1]);
  }
};

/// What the names of files say in one language. Each folder of a language has its own as data.
struct Conventions {
  /// Names of test files without their last extension, as they are written.
  std::span<const FileNamePattern> tests;
  /// Whole names of files that a program writes; lower case.
  std::span<const FileNamePattern> generated{};
};

}  // namespace kestrix::index
