#include <kestrix/grammars.h>

#include <array>

#include "kestrix/languages/ecmascript/reader.h"
#include "kestrix/languages/ecmascript/javascript.scm.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/ecmascript/resolver.h"

namespace kestrix::index {

const Language& javascript_language() {
  static constexpr std::array<std::string_view, 4> kFiles = {".js", ".jsx", ".mjs", ".cjs"};
  static const Language language{.name = "javascript",
                                 .files = kFiles,
                                 .grammar = tree_sitter_javascript,
                                 .query = javascript_query,
                                 .lexis = &ecmascript::lexis,
                                 .keywords = ecmascript::keywords(),
                                 .read = ecmascript::read,
                                 .resolver = make_ecmascript_resolver};
  return language;
}

}  // namespace kestrix::index
