#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "kestrix/facts/facts.h"

namespace kestrix::index {

struct Language;

struct ReadOptions {
  /// A file whose parse takes more is given up; see ParsedText. Unless it is set, what a text may
  /// take grows with its size, to several times what code takes, so that a repository never takes
  /// more than its bytes and files allow.
  std::optional<std::uint64_t> parse_steps{};
};

/// Parses `text` (UTF-8, may hold invalid bytes) and returns its facts; none when its parse would
/// take too many steps or too much memory. Deterministic; never recurses on the depth of the input.
/// Usable from several threads.
std::optional<FileFacts> read_facts(const Language& language, std::string_view text,
                                    const ReadOptions& options = {});

}  // namespace kestrix::index
