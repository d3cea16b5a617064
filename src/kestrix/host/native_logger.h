#pragma once

namespace kestrix {

/// Whether the native host keeps its log to itself. Off at first; may be set at any time and from
/// any thread.
void set_log_quiet(bool quiet) noexcept;

}  // namespace kestrix
