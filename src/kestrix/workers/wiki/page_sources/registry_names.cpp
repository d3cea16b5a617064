#include <re2/re2.h>

#include <string>

#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix {

bool is_registry_name(std::string_view name) {
  static const RE2 pattern(std::string("(?i)") + REGISTRY_RE);
  return RE2::PartialMatch(re2::StringPiece(name.data(), name.size()), pattern);
}

}  // namespace kestrix
