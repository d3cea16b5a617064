#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> c_family_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"cpp", Known::kErrorBase, "std.exception"},
    {"cpp", Known::kErrorBase, "std.runtime_error"},
    {"cpp", Known::kErrorBase, "std.logic_error"},
    {"cpp", Known::kErrorBase, "exception"},
    {"cpp", Known::kErrorBase, "runtime_error"},
    {"cpp", Known::kErrorBase, "logic_error"},
    {"c", Known::kLoader, "dlopen"},
    {"c", Known::kLoader, "dlsym"},
    {"c", Known::kLoader, "LoadLibrary"},
    {"c", Known::kSettingsCall, "getopt"},
    {"c", Known::kSettingsCall, "getopt_long"},
    {"c", Known::kSettingsCall, "getenv"},
};

}  // namespace

std::span<const FrameworkName> c_family_frameworks() { return kNames; }

}  // namespace kestrix::index
