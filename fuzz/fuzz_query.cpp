// The queries of the languages, matched by this program and by the parser library. The input's
// first byte picks the language, the rest is the text. A replay feeds the text to all of them.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/require.h"
#include "kestrix/languages/language.h"
#include "tests/languages/query_comparison.h"

namespace {

void compare(const kestrix::index::Language& language, std::string_view text) {
  const std::string difference = kestrix::test::query_difference(language, text);
  kestrix::test::require(difference.empty(), difference.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using kestrix::index::languages;
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
#ifdef KESTRIX_FUZZING
  compare(*languages()[*data % languages().size()], text);
#else
  for (const auto* language : languages()) compare(*language, text);
#endif
  return 0;
}

#ifdef KESTRIX_FUZZING
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

// Hands a text to another language now and then; else the first byte would seldom be chosen.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned seed) {
  if (size > 0 && seed % 32 == 0) {
    *data = static_cast<std::uint8_t>(seed >> 8U);
    return size;
  }
  return LLVMFuzzerMutate(data, size, most);
}
#endif
