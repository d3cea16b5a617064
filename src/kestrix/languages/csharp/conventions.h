#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::csharp {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "Tests"},
});
// Forms, intermediate files of the build, the state of a database model.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, ".designer.cs"},
    {FileNamePattern::Part::kSuffix, ".g.cs"},
    {FileNamePattern::Part::kSuffix, ".g.i.cs"},
    {FileNamePattern::Part::kSuffix, "modelsnapshot.cs"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::csharp
