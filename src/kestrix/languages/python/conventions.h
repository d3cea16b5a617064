#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::python {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kPrefix, "test_"},
    {FileNamePattern::Part::kSuffix, "_test"},
    {FileNamePattern::Part::kPrefix, "unittest_"},
    {FileNamePattern::Part::kWhole, "conftest"},
    {FileNamePattern::Part::kWhole, "tests"},
});
// Stubs of protocol buffers and of their services.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "_pb2.py"},
    {FileNamePattern::Part::kSuffix, "_pb2.pyi"},
    {FileNamePattern::Part::kSuffix, "_pb2_grpc.py"},
    {FileNamePattern::Part::kSuffix, "_pb2_grpc.pyi"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::python
