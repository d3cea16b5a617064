#include <kestrix/grammars.h>

#include <array>

#include "kestrix/languages/c_family/c.scm.h"
#include "kestrix/languages/c_family/code.h"
#include "kestrix/languages/c_family/conventions.h"
#include "kestrix/languages/c_family/masking.h"
#include "kestrix/languages/c_family/reader.h"
#include "kestrix/languages/c_family/resolver.h"
#include "kestrix/languages/language.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kFiles = {".c"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 7> kCaptures = {
    "constant", "declaration", "function", "macro", "name", "type", "typedef"};

}  // namespace

const Language& c_language() {
  static const Language language{.name = "c",
                                 .files = kFiles,
                                 .grammar = tree_sitter_c,
                                 .query = c_query,
                                 .captures = kCaptures,
                                 .lexis = &c_family_lexis(),
                                 .keywords = {},
                                 .read = read_c_family,
                                 .resolver = make_include_resolver,
                                 .code = &c_code,
                                 .mask = mask_macros,
                                 .conventions = &c_family::kConventions};
  return language;
}

}  // namespace kestrix::index
