#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::jvm {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "Test"},
    {FileNamePattern::Part::kSuffix, "Tests"},
    {FileNamePattern::Part::kSuffix, "TestCase"},
    {FileNamePattern::Part::kSuffixAfterLowerCase, "IT"},
});
// Stubs of protocol buffers and of their services.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "grpc.java"},
    {FileNamePattern::Part::kSuffix, "outerclass.java"},
    {FileNamePattern::Part::kSuffix, "grpckt.kt"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::jvm
