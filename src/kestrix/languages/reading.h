#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "kestrix/facts/facts.h"

namespace kestrix::index {

struct Language;

struct ReadOptions {
  /// A file whose parse takes more is given up; see ParsedText. About a second of work for
  /// code, which reaches ParserMemory::kLimit before; hostile texts may take several.
  std::uint64_t parse_steps = 50'000;
};

/// Parses `text` (UTF-8, may hold invalid bytes) and returns its facts; none when its parse would
/// take too many steps or too much memory. Deterministic; never recurses on the depth of the input.
/// Usable from several threads.
std::optional<FileFacts> read_facts(const Language& language, std::string_view text,
                                    const ReadOptions& options = {});

}  // namespace kestrix::index
