#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::scala {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "Test"},
    {FileNamePattern::Part::kSuffix, "Tests"},
    {FileNamePattern::Part::kSuffix, "TestCase"},
    {FileNamePattern::Part::kSuffix, "Spec"},
    {FileNamePattern::Part::kSuffix, "Specs"},
    {FileNamePattern::Part::kSuffix, "Suite"},
    {FileNamePattern::Part::kSuffixAfterLowerCase, "IT"},
});
// Stubs of protocol buffers and of their services.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "grpc.scala"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::scala
