#pragma once

#include <cerrno>

namespace kestrix::index {

/// Makes a call of the system again for as long as it is interrupted, as file systems over a
/// network may be in any call. The call gives less than 0 for a failure.
template <class Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

}  // namespace kestrix::index
