#include <kestrix/grammars.h>

#include <array>

#include "kestrix/index/languages/c.scm.h"
#include "kestrix/index/languages/c_family/masking.h"
#include "kestrix/index/languages/c_family/reader.h"
#include "kestrix/index/parse/language.h"
#include "kestrix/index/resolve/includes.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kFiles = {".c"};

}  // namespace

const Language& c_language() {
  static const Language language{.name = "c",
                                 .files = kFiles,
                                 .grammar = tree_sitter_c,
                                 .query = c_query,
                                 .lexis = &c_family_lexis(),
                                 .keywords = {},
                                 .read = read_c_family,
                                 .resolver = make_include_resolver,
                                 .mask = mask_macros};
  return language;
}

}  // namespace kestrix::index
