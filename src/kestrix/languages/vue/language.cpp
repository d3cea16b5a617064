#include "kestrix/languages/language.h"

#include <array>
#include <string_view>

#include "kestrix/languages/ecmascript/dialect.h"

namespace kestrix::index {

const Language& vue_language() {
  static constexpr std::array<std::string_view, 1> kFiles = {".vue"};
  static const Language language = ecmascript::component_dialect("vue", kFiles);
  return language;
}

}  // namespace kestrix::index
