#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::swift {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "Test"},
    {FileNamePattern::Part::kSuffix, "Tests"},
    {FileNamePattern::Part::kSuffix, "TestCase"},
    {FileNamePattern::Part::kSuffixAfterLowerCase, "Spec"},
});
// Stubs of protocol buffers and of their services, and what code generators of resources write.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, ".pb.swift"},
    {FileNamePattern::Part::kSuffix, ".grpc.swift"},
    {FileNamePattern::Part::kSuffix, ".generated.swift"},
    {FileNamePattern::Part::kSuffix, ".graphql.swift"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::swift
