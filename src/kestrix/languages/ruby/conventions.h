#pragma once

#include <array>

#include "kestrix/languages/conventions.h"

namespace kestrix::index::ruby {

inline constexpr std::array kTestNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "_spec"},
    {FileNamePattern::Part::kSuffix, "_test"},
    {FileNamePattern::Part::kWhole, "spec_helper"},
    {FileNamePattern::Part::kWhole, "rails_helper"},
    {FileNamePattern::Part::kWhole, "test_helper"},
});
// Stubs of protocol buffers.
inline constexpr std::array kGeneratedNames = std::to_array<FileNamePattern>({
    {FileNamePattern::Part::kSuffix, "_pb.rb"},
});
inline constexpr Conventions kConventions{.tests = kTestNames, .generated = kGeneratedNames};

}  // namespace kestrix::index::ruby
