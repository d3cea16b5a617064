#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::go {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "_test"},
});
// Stubs of protocol buffers, deep copies of controllers, wired-up providers.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, ".pb.go"},
    {FileNamePattern::Part::kSuffix, ".pb.gw.go"},
    {FileNamePattern::Part::kPrefix, "zz_generated"},
    {FileNamePattern::Part::kWhole, "wire_gen.go"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::go
