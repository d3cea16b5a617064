#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "kestrix/facts/facts.h"

namespace kestrix::index {

struct Language;

struct ReadOptions {
  /// A file whose parse takes more of the thread's time is given up.
  std::chrono::milliseconds parse_budget{2000};
};

/// Parses `text` (UTF-8, may hold invalid bytes) and returns its facts; none when the budget of
/// time or memory ran out. Deterministic but for the budget; never recurses on the depth of the
/// input. Usable from several threads.
std::optional<FileFacts> read_facts(const Language& language, std::string_view text,
                                    const ReadOptions& options = {});

}  // namespace kestrix::index
