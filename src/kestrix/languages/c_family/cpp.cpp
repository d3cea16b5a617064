#include <kestrix/grammars.h>

#include <array>

#include "kestrix/languages/c_family/code.h"
#include "kestrix/languages/c_family/conventions.h"
#include "kestrix/languages/c_family/cpp.scm.h"
#include "kestrix/languages/c_family/masking.h"
#include "kestrix/languages/c_family/reader.h"
#include "kestrix/languages/c_family/resolver.h"
#include "kestrix/languages/language.h"

namespace kestrix::index {
namespace {

// A ".h" may be either language; the grammar of C++ reads nearly all of C.
constexpr std::array<std::string_view, 16> kFiles = {".cc",  ".cpp", ".cxx", ".c++", ".cu",  ".cuh",
                                                     ".h",   ".hh",  ".hpp", ".hxx", ".h++", ".inl",
                                                     ".ipp", ".ixx", ".tcc", ".tpp"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 8> kCaptures = {
    "alias", "constant", "declaration", "function", "macro", "name", "type", "typedef"};

}  // namespace

const Language& cpp_language() {
  static const Language language{.name = "cpp",
                                 .files = kFiles,
                                 .grammar = tree_sitter_cpp,
                                 .query = cpp_query,
                                 .captures = kCaptures,
                                 .lexis = &c_family_lexis(),
                                 .keywords = {},
                                 .read = read_c_family,
                                 .resolver = make_include_resolver,
                                 .code = &cpp_code,
                                 .mask = mask_macros,
                                 .conventions = &c_family::kConventions};
  return language;
}

}  // namespace kestrix::index
