#include <kestrix/grammars.h>

#include <array>

#include "kestrix/languages/ecmascript/reader.h"
#include "kestrix/languages/ecmascript/typescript.scm.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/ecmascript/resolver.h"

namespace kestrix::index {

const Language& typescript_language() {
  static constexpr std::array<std::string_view, 3> kFiles = {".ts", ".mts", ".cts"};
  static const Language language{.name = "typescript",
                                 .files = kFiles,
                                 .grammar = tree_sitter_typescript,
                                 .query = typescript_query,
                                 .lexis = &ecmascript::lexis,
                                 .keywords = ecmascript::keywords(),
                                 .read = ecmascript::read,
                                 .resolver = make_ecmascript_resolver};
  return language;
}

}  // namespace kestrix::index
