#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::ecmascript {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, ".test"},
    {FileNamePattern::Part::kSuffix, ".spec"},
    {FileNamePattern::Part::kSuffix, ".e2e"},
    {FileNamePattern::Part::kSuffix, ".e2e-spec"},
    {FileNamePattern::Part::kSuffix, ".cy"},
    {FileNamePattern::Part::kSuffix, ".test-d"},
    {FileNamePattern::Part::kSuffix, "_test"},
});
// What bundlers write, and stubs of protocol buffers.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, ".min.js"},
    {FileNamePattern::Part::kSuffix, ".min.mjs"},
    {FileNamePattern::Part::kSuffix, ".bundle.js"},
    {FileNamePattern::Part::kSuffix, "_pb.js"},
    {FileNamePattern::Part::kSuffix, "_pb.d.ts"},
    {FileNamePattern::Part::kSuffix, "_grpc_pb.js"},
    {FileNamePattern::Part::kSuffix, "_grpc_pb.d.ts"},
    {FileNamePattern::Part::kSuffix, "_pb.ts"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::ecmascript
