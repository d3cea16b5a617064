#include "kestrix/utils/best_effort.h"

#include "kestrix/utils/logger.h"

namespace kestrix {

void note_absorbed(const std::string& label, const std::exception& error) noexcept {
  try {
    Logger("kestrix.utils.best_effort").warning(label + " failed", describe(error));
  } catch (...) {  // NOLINT(bugprone-empty-catch): a note that cannot be taken costs no answer
  }
}

}  // namespace kestrix
