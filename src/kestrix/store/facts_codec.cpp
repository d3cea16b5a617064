#include "kestrix/store/facts_codec.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <utility>

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
  to.text(name.local);
}

ImportedName read_name(Decoder& from) {
  ImportedName name;
  name.name = from.text();
  name.exported = from.text();
  name.uses = from.number<std::uint32_t>();
  name.local = from.text();
  return name;
}

void write_import(Encoder& to, const ImportFact& import) {
  to.text(import.module);
  to.number(import.form);
  to.number(import.level);
  to.list(import.names, write_name);
  to.number(import.uses);
  to.number(import.line);
  to.text(import.local);
}

ImportFact read_import(Decoder& from) {
  ImportFact import;
  import.module = from.text();
  import.form = from.number<std::uint16_t>();
  import.level = from.number<std::uint16_t>();
  import.names = from.list<ImportedName>(read_name);
  import.uses = from.number<std::uint32_t>();
  import.line = from.number<std::uint32_t>();
  import.local = from.text();
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

// Puts the seal before the bytes.
std::string sealed(std::string bytes, const FactsOrigin& origin) {
  Encoder seal;
  seal.number(seal_of(bytes, origin));
  return seal.take() + bytes;
}

Decoder unsealed(std::string_view bytes, const FactsOrigin& origin) {
  Decoder from(bytes);
  if (from.number<std::uint64_t>() != seal_of(from.rest(), origin)) {
    throw CorruptIndex("facts that are damaged");
  }
  return from;
}

template <class Enum>
Enum enumerator(Decoder& from, Enum last) {
  const auto value = from.number<std::uint8_t>();
  if (value > static_cast<std::uint8_t>(last)) throw CorruptIndex("a fact of no kind");
  return static_cast<Enum>(value);
}

constexpr std::uint32_t kExported = 1;
constexpr std::uint32_t kAbstract = 2;
constexpr std::uint32_t kCounts = 4;  // a type with members, or a table
constexpr std::uint32_t kBases = 8;
constexpr std::uint32_t kShapeBits = 4;  // how far up the shape stands

void write_declaration(Encoder& to, const Declaration& as) {
  const bool counts = (as.fields | as.methods | as.size) != 0;
  to.number(static_cast<std::uint8_t>(as.kind));
  to.number((as.exported ? kExported : 0) | (as.is_abstract ? kAbstract : 0) |
            (counts ? kCounts : 0) | (as.bases.empty() ? 0 : kBases) |
            (static_cast<std::uint32_t>(as.shape) << kShapeBits));
  to.text(as.name);
  to.number(as.line);
  to.number(as.last_line - std::min(as.last_line, as.line));
  to.number(as.container);
  if (!as.bases.empty()) {
    Encoder bases;
    for (const std::string& base : as.bases) bases.text(base);
    to.text(bases.take());
  }
  if (!counts) return;
  for (const auto number : {as.size, as.fields, as.methods, as.abstract_methods}) to.number(number);
}

DeclarationView read_declaration(Decoder& from) {
  DeclarationView as;
  as.kind = enumerator(from, DeclarationKind::kMacro);
  const auto flags = from.number<std::uint32_t>();
  if (flags >> kShapeBits > static_cast<std::uint32_t>(ValueShape::kEmpty)) {
    throw CorruptIndex("a value of no shape");
  }
  as.exported = (flags & kExported) != 0;
  as.is_abstract = (flags & kAbstract) != 0;
  as.shape = static_cast<ValueShape>(flags >> kShapeBits);
  as.name = from.text();
  as.line = from.number<std::uint32_t>();
  as.last_line = as.line + from.number<std::uint32_t>();
  as.container = from.number<std::uint32_t>();
  if ((flags & kBases) != 0) as.encoded_bases = from.text();
  if ((flags & kCounts) == 0) return as;
  for (auto* number : {&as.size, &as.fields, &as.methods, &as.abstract_methods}) {
    *number = from.number<std::uint32_t>();
  }
  return as;
}

void forget_uses(FileFacts& facts) {
  facts.symbols.clear();
  facts.uses.clear();
  facts.mentions.clear();
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
  return sealed(to.take(), origin);
}

FileFacts decode_facts(std::string_view bytes, const FactsOrigin& origin) {
  Decoder from = unsealed(bytes, origin);
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

std::string encode_declarations(std::span<const Declaration> declarations) {
  Encoder to;
  for (const Declaration& as : declarations) write_declaration(to, as);
  return to.take();
}

std::vector<DeclarationView> decode_declarations(std::string_view bytes) {
  std::vector<DeclarationView> declarations;
  for (Decoder from(bytes); !from.rest().empty();) {
    declarations.push_back(read_declaration(from));
    // A container comes before its members, so that no chain of containers has a circle.
    if (declarations.back().container >= declarations.size()) {
      throw CorruptIndex("a declaration in one that comes later");
    }
  }
  return declarations;
}

std::string encode_mentions(std::span<const Mention> mentions, const FactsOrigin& origin) {
  if (mentions.empty()) return {};
  Encoder to;
  for (std::size_t at = 0; at < mentions.size();) {
    std::size_t end = at;
    while (end < mentions.size() && mentions[end].name == mentions[at].name) ++end;
    to.text(mentions[at].name);
    to.number(end - at);
    for (; at < end; ++at) {
      to.number(static_cast<std::uint8_t>(mentions[at].role));
      to.number(mentions[at].within);
      to.number(mentions[at].line);
      to.number(mentions[at].count);
    }
  }
  return sealed(to.take(), origin);
}

std::vector<Mention> decode_mentions(std::string_view bytes, const FactsOrigin& origin) {
  std::vector<Mention> mentions;
  if (bytes.empty()) return mentions;
  for (Decoder from = unsealed(bytes, origin); !from.rest().empty();) {
    const std::string_view name = from.text();
    for (auto left = from.number<std::uint32_t>(); left > 0; --left) {
      Mention& mention = mentions.emplace_back();
      mention.name = name;
      mention.role = enumerator(from, Role::kUses);
      mention.within = from.number<std::uint32_t>();
      mention.line = from.number<std::uint32_t>();
      mention.count = from.number<std::uint32_t>();
    }
  }
  return mentions;
}

bool declare_alike(std::span<const DeclarationView> a, std::span<const DeclarationView> b) {
  const auto identity = [](const DeclarationView& as) {
    return std::tuple(as.name, as.kind, as.container, as.exported, as.is_abstract,
                      as.encoded_bases);
  };
  return std::ranges::equal(a, b, {}, identity, identity);
}

std::vector<std::string_view> DeclarationView::bases() const {
  std::vector<std::string_view> names;
  for (Decoder from(encoded_bases); !from.rest().empty();) names.push_back(from.text());
  return names;
}

bool look_alike_from_outside(FileFacts a, FileFacts b) {
  forget_uses(a);
  forget_uses(b);
  return a == b;
}

}  // namespace kestrix::index
