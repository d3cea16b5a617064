#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::c_family {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "_test"},
    {FileNamePattern::Part::kSuffix, "_unittest"},
});
// Stubs of protocol buffers and flat buffers, and what the tools of Qt write.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, ".pb.cc"},
    {FileNamePattern::Part::kSuffix, ".pb.h"},
    {FileNamePattern::Part::kSuffix, ".pb.c"},
    {FileNamePattern::Part::kSuffix, ".pb-c.c"},
    {FileNamePattern::Part::kSuffix, ".pb-c.h"},
    {FileNamePattern::Part::kSuffix, "_generated.h"},
    {FileNamePattern::Part::kPrefix, "moc_"},
    {FileNamePattern::Part::kPrefix, "qrc_"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::c_family
