#pragma once

#include <span>
#include <string>

#include "apps/page_sources/console.h"
#include "kestrix/utils/stop.h"

namespace kestrix::program {

// Exit codes.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;
/// The run was asked to stop and did; never an exit code of the process.
inline constexpr int kStopped = -1;

/// One run of the program with these arguments (without its name): writes the answer and the
/// messages to `console` and returns how it ended. Never throws. The run ends early when `stop` is
/// set.
int run(std::span<const std::string> arguments, Console& console, const StopFlag& stop);

}  // namespace kestrix::program
