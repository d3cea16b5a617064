// The reader of every language. The input's first byte picks the language, the rest is the text.
// A replay feeds the text to all of them: every grammar gets every other language's files.

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "fuzz/require.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/reading.h"
#include "kestrix/store/facts_codec.h"

namespace kestrix::index {
namespace {

using test::require;

bool is_one_line(std::string_view text) { return text.find('\n') == text.npos; }

void read(const Language& language, std::string_view text) {
  auto facts = read_facts(language, text, {.parse_steps = 25'000});
  if (!facts) return;
  const auto lines = std::ranges::count(text, '\n') + 1;
  const auto is_line = [lines](std::uint32_t line) { return line >= 1 && line <= lines; };
  for (const SymbolFact& symbol : facts->symbols) {
    require(is_line(symbol.line), "a symbol stands on a line of the text");
    require(is_one_line(symbol.signature), "a signature is one line");
    require(!symbol.name.empty(), "a symbol has a name");
  }
  for (const ImportFact& import : facts->imports) {
    require(is_line(import.line), "an import stands on a line of the text");
  }
  require(std::ranges::is_sorted(facts->declares), "declared names ascend");
  require(std::ranges::is_sorted(facts->uses, {}, &NameUse::name), "used names ascend");
  for (const Declaration& as : facts->declarations) {
    require(is_line(as.line), "a declaration stands on a line of the text");
  }
  const FactsOrigin origin{"path", 7};
  FileFacts stored = decode_facts(encode_facts(*facts, origin), origin);
  stored.mentions = decode_mentions(encode_mentions(facts->mentions, origin), origin);
  require(decode_declarations(encode_declarations(facts->declarations)).size() ==
              facts->declarations.size(),
          "declarations come back as they were stored");
  stored.declarations = facts->declarations;
  stored.dropped = facts->dropped;
  facts->symbols.clear();
  require(stored == *facts, "facts come back as they were stored");
}

}  // namespace
}  // namespace kestrix::index

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix::index;  // NOLINT(google-build-using-namespace)
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
#ifdef KESTRIX_FUZZING
  read(*languages()[*data % languages().size()], text);
#else
  for (const Language* language : languages()) read(*language, text);
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
