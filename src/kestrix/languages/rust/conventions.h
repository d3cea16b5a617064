#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::rust {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kWhole, "tests"},
    {FileNamePattern::Part::kSuffix, "_test"},
    {FileNamePattern::Part::kSuffix, "_tests"},
});
inline constexpr Conventions kConventions{.tests = kTestNames};

}  // namespace kestrix::index::rust
