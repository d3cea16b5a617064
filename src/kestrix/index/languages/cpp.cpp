#include <kestrix/grammars.h>

#include <array>

#include "kestrix/index/languages/c_family/masking.h"
#include "kestrix/index/languages/c_family/reader.h"
#include "kestrix/index/languages/cpp.scm.h"
#include "kestrix/index/parse/language.h"
#include "kestrix/index/resolve/includes.h"

namespace kestrix::index {
namespace {

// A ".h" may be either language; the grammar of C++ reads nearly all of C.
constexpr std::array<std::string_view, 16> kFiles = {".cc",  ".cpp", ".cxx", ".c++", ".cu",  ".cuh",
                                                     ".h",   ".hh",  ".hpp", ".hxx", ".h++", ".inl",
                                                     ".ipp", ".ixx", ".tcc", ".tpp"};

}  // namespace

const Language& cpp_language() {
  static const Language language{.name = "cpp",
                                 .files = kFiles,
                                 .grammar = tree_sitter_cpp,
                                 .query = cpp_query,
                                 .lexis = &c_family_lexis(),
                                 .keywords = {},
                                 .read = read_c_family,
                                 .resolver = make_include_resolver,
                                 .mask = mask_macros};
  return language;
}

}  // namespace kestrix::index
