#pragma once

#include <array>
#include <string_view>

#include "kestrix/languages/code/rules.h"

namespace kestrix::index::jvm {

/// Calls and annotations of the common libraries that say more than that they are there.
inline constexpr std::array kCalls = std::to_array<CallRule>({
    {"System.getenv", Role::kReads},
    {"System.getProperty", Role::kReads},
    {"Boolean.getBoolean", Role::kReads},
    {"Integer.getInteger", Role::kReads},
    {"Long.getLong", Role::kReads},
    {"env.getProperty", Role::kReads},
    {"env.getRequiredProperty", Role::kReads},
    {"environment.getProperty", Role::kReads},
    {"environment.getRequiredProperty", Role::kReads},
    {"properties.getProperty", Role::kReads},
    {"props.getProperty", Role::kReads},
    {"Value", Role::kReads},
    {"ConfigurationProperties", Role::kReads},
    {"ConditionalOnProperty", Role::kReads},
    {"ConfigProperty", Role::kReads},
    {"ConfigMapping", Role::kReads},
    {"Throws", Role::kThrows},
    {"ExceptionHandler", Role::kCatches},
    {"assertThrows", Role::kCatches},
    {"assertThrowsExactly", Role::kCatches},
    {"assertFailsWith", Role::kCatches},
    {"shouldThrow", Role::kCatches},
    {"assertInstanceOf", Role::kCatches},
    {"isInstanceOf", Role::kCatches},
    {"isExactlyInstanceOf", Role::kCatches},
    {"onErrorResume", Role::kCatches},
    {"onErrorMap", Role::kCatches},
});

/// Of "${key:default}" and "#{…}" the key.
std::string_view key_of(std::string_view content);

}  // namespace kestrix::index::jvm
