#include "kestrix/languages/language.h"

#include <array>
#include <string_view>

#include "kestrix/languages/ecmascript/dialect.h"

namespace kestrix::index {

const Language& svelte_language() {
  static constexpr std::array<std::string_view, 1> kFiles = {".svelte"};
  static const Language language = ecmascript::component_dialect("svelte", kFiles);
  return language;
}

}  // namespace kestrix::index
