#include "kestrix/store/facts_codec.h"

#include <cstdint>

#include "kestrix/store/byte_codec.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/corrupt_index.h"

namespace kestrix::index {
namespace {

void write_use(Encoder& to, const NameUse& use) {
  to.text(use.name);
  to.number(use.uses);
}

NameUse read_use(Decoder& from) {
  NameUse use;
  use.name = from.text();
  use.uses = from.number<std::uint32_t>();
  return use;
}

void write_name(Encoder& to, const ImportedName& name) {
  to.text(name.name);
  to.text(name.exported);
  to.number(name.uses);
}

ImportedName read_name(Decoder& from) {
  ImportedName name;
  name.name = from.text();
  name.exported = from.text();
  name.uses = from.number<std::uint32_t>();
  return name;
}

void write_import(Encoder& to, const ImportFact& import) {
  to.text(import.module);
  to.number(import.form);
  to.number(import.level);
  to.list(import.names, write_name);
  to.number(import.uses);
  to.number(import.line);
}

ImportFact read_import(Decoder& from) {
  ImportFact import;
  import.module = from.text();
  import.form = from.number<std::uint16_t>();
  import.level = from.number<std::uint16_t>();
  import.names = from.list<ImportedName>(read_name);
  import.uses = from.number<std::uint32_t>();
  import.line = from.number<std::uint32_t>();
  return import;
}

// Comes before the facts, so that neither damage nor another file's facts pass for them.
std::uint64_t seal_of(std::string_view bytes, const FactsOrigin& origin) {
  Digest digest;
  digest.add(origin.path);
  digest.add(origin.content);
  digest.add(bytes);
  return digest.value();
}

void forget_uses(FileFacts& facts) {
  facts.symbols.clear();
  facts.uses.clear();
  for (ImportFact& import : facts.imports) {
    import.uses = 0;
    import.line = 0;
    for (ImportedName& name : import.names) name.uses = 0;
  }
}

}  // namespace

std::string encode_facts(const FileFacts& facts, const FactsOrigin& origin) {
  Encoder to;
  to.text(facts.package);
  to.list(facts.imports, write_import);
  to.list(facts.declares, [](Encoder& out, const std::string& name) { out.text(name); });
  to.list(facts.uses, write_use);
  const std::string bytes = to.take();
  Encoder sealed;
  sealed.number(seal_of(bytes, origin));
  return sealed.take() + bytes;
}

FileFacts decode_facts(std::string_view bytes, const FactsOrigin& origin) {
  Decoder from(bytes);
  if (from.number<std::uint64_t>() != seal_of(from.rest(), origin)) {
    throw CorruptIndex("facts that are damaged");
  }
  FileFacts facts;
  facts.package = from.text();
  facts.imports = from.list<ImportFact>(read_import);
  facts.declares = from.list<std::string>([](Decoder& in) { return std::string(in.text()); });
  facts.uses = from.list<NameUse>(read_use);
  if (!from.rest().empty()) throw CorruptIndex("facts with something behind them");
  return facts;
}

std::string encode_symbols(std::span<const SymbolFact> symbols) {
  Encoder to;
  for (const SymbolFact& symbol : symbols) {
    to.number(static_cast<std::uint8_t>(symbol.kind));
    to.number(symbol.line);
    to.text(symbol.name);
    to.text(symbol.signature);
  }
  return to.take();
}

std::vector<SymbolView> decode_symbols(std::string_view bytes) {
  std::vector<SymbolView> symbols;
  for (Decoder from(bytes); !from.rest().empty();) {
    const auto kind = from.number<std::uint8_t>();
    if (kind > static_cast<std::uint8_t>(SymbolKind::kVariable)) {
      throw CorruptIndex("a symbol of no kind");
    }
    const auto line = from.number<std::uint32_t>();
    const auto name = from.text();
    symbols.push_back({static_cast<SymbolKind>(kind), name, from.text(), line});
  }
  return symbols;
}

bool look_alike_from_outside(FileFacts a, FileFacts b) {
  forget_uses(a);
  forget_uses(b);
  return a == b;
}

}  // namespace kestrix::index
