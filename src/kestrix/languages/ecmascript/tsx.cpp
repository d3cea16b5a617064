#include <kestrix/grammars.h>

#include <array>

#include "kestrix/languages/ecmascript/reader.h"
#include "kestrix/languages/ecmascript/typescript.scm.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/ecmascript/resolver.h"

namespace kestrix::index {

const Language& tsx_language() {
  static constexpr std::array<std::string_view, 1> kFiles = {".tsx"};
  static const Language language{.name = "tsx",
                                 .files = kFiles,
                                 .grammar = tree_sitter_tsx,
                                 .query = typescript_query,
                                 .lexis = &ecmascript::lexis,
                                 .keywords = ecmascript::keywords(),
                                 .read = ecmascript::read,
                                 .resolver = make_ecmascript_resolver};
  return language;
}

}  // namespace kestrix::index
