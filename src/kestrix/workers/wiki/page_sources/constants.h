#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace kestrix {

/// An immutable set of a few names; membership is exact.
template <std::size_t N>
struct NameSet {
  std::array<std::string_view, N> names;

  constexpr bool contains(std::string_view name) const {
    return std::ranges::find(names, name) != names.end();
  }
};
template <class... Names>
NameSet(Names...) -> NameSet<sizeof...(Names)>;

// Constants whose full name begins with an underscore drop it here: with a capital behind it the
// name would be reserved.

/// Directory names that hold test data.
inline constexpr NameSet<7> FIXTURE_DIRS{
    {"golden", "fixture", "fixtures", "__fixtures__", "testdata", "test_data", "__snapshots__"}};
/// Directory names that hold archived documents.
inline constexpr NameSet<6> ARCHIVE_DIRS{
    {"archive", "archived", "old", "superseded", "deprecated", "obsolete"}};
/// The most file stems that a topic carries.
inline constexpr std::size_t TOPIC_STEMS = 12;

/// The fewest entry points for which a shared dispatch is sought, and the divisor of the reach
/// that a dispatch file needs (a third of the entry points).
inline constexpr std::size_t DISPATCH_MIN_ROOTS = 3;
/// How many dispatch files a flows page takes.
inline constexpr std::size_t DISPATCH_FILES = 3;

/// How many contract and registry files the extending page takes.
inline constexpr std::size_t EXTENSION_CONTRACTS = 6;
/// How many wiring files may follow them.
inline constexpr std::size_t EXTENSION_WIRING = 4;

/// The most symbols of one search that scans a whole kind.
inline constexpr std::size_t SYMBOL_SCAN_LIMIT = 20000;
/// The most characters of one file that a detector reads.
inline constexpr std::size_t DETECTOR_READ_CHARS = 400000;

/// File names, in lower case, that make a file a configuration file.
inline constexpr NameSet<12> CONFIG_BASENAMES{
    {"config.ini", "config.json", "config.py", "config.toml", "config.yaml", "config.yml",
     "settings.json", "settings.py", "settings.yaml", "settings.yml", "setup.cfg", "tox.ini"}};

/// Name patterns of exception classes.
inline constexpr std::array<std::string_view, 2> EXCEPTION_PATTERNS{"%Error", "%Exception"};

/// The component layer whose roots make interface symbols count as contracts.
inline constexpr std::string_view DOMAIN_LAYER = "domain";
/// Name patterns that narrow registry candidates in the index.
inline constexpr std::array<std::string_view, 5> REGISTRY_PATTERNS{
    "%REGISTRY", "%REGISTRIES", "%HANDLERS", "%PLUGINS", "%TOOLS"};
/// The test that a found name is a registry's: the whole name, or its last word after "_".
inline constexpr const char* REGISTRY_RE = "(?:^|_)(?:REGISTRY|REGISTRIES|HANDLERS|PLUGINS|TOOLS)$";

}  // namespace kestrix
