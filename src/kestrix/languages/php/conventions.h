#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::php {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "Test"},
});
inline constexpr Conventions kConventions{.tests = kTestNames};

}  // namespace kestrix::index::php
