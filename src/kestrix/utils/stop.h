#pragma once

#include <atomic>

namespace kestrix {

/// What is thrown when the user asks the work to stop. It is no `std::exception`, so it passes
/// every handler that absorbs failures.
struct StopRequest {};

/// A request to stop. Safe to set from a signal handler.
using StopFlag = std::atomic<bool>;
static_assert(StopFlag::is_always_lock_free);

/// Whether `flag` is there and set.
inline bool stop_requested(const StopFlag* flag) noexcept {
  return flag != nullptr && flag->load(std::memory_order_relaxed);
}

/// Throws `StopRequest` when `flag` is there and set.
inline void check_stop(const StopFlag* flag) {
  if (stop_requested(flag)) throw StopRequest{};
}

}  // namespace kestrix
