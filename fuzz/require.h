#pragma once

#include <cstdlib>
#include <iostream>

namespace kestrix::test {

/// Ends the process, so that the input counts as a failing one, unless `holds`.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "does not hold: " << what << '\n';
  std::abort();
}

}  // namespace kestrix::test
