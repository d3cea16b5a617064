#include "kestrix/index/facts_codec.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "kestrix/index/content_hash.h"
#include "kestrix/index/corrupt_index.h"

namespace kestrix::index {
namespace {

// Numbers are written seven bits a byte, the lowest first; texts and lists begin with their length.
class Encoder {
 public:
  void number(std::uint64_t value) {
    for (; value >= 0x80; value >>= 7U) bytes_ += static_cast<char>(value | 0x80);
    bytes_ += static_cast<char>(value);
  }

  void text(std::string_view value) {
    number(value.size());
    bytes_ += value;
  }

  template <class Item, class Write>
  void list(const std::vector<Item>& items, Write write) {
    number(items.size());
    for (const Item& item : items) write(*this, item);
  }

  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class Decoder {
 public:
  explicit Decoder(std::string_view bytes) : rest_(bytes) {}

  template <class Number>
  Number number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const auto byte = static_cast<unsigned char>(bytes(1).front());
      value |= std::uint64_t{byte & 0x7FU} << shift;
      if (byte < 0x80) return checked<Number>(value);
    }
    throw CorruptIndex("a number without end");
  }

  std::string text() { return std::string(bytes(number<std::size_t>())); }

  template <class Item, class Read>
  std::vector<Item> list(Read read) {
    const auto count = number<std::size_t>();
    if (count > rest_.size()) throw CorruptIndex("a list beyond its end");
    std::vector<Item> items;
    items.reserve(count);
    for (std::size_t i = 0; i < count; ++i) items.push_back(read(*this));
    return items;
  }

  std::string_view rest() const { return rest_; }

 private:
  template <class Number>
  static Number checked(std::uint64_t value) {
    if (value > std::numeric_limits<Number>::max()) throw CorruptIndex("a number out of range");
    return static_cast<Number>(value);
  }

  std::string_view bytes(std::size_t count) {
    if (count > rest_.size()) throw CorruptIndex("facts that break off");
    const auto result = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return result;
  }

  std::string_view rest_;
};

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
std::uint64_t seal_of(std::string_view bytes, std::string_view path) {
  Digest digest;
  digest.add(path);
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

std::string encode_facts(const FileFacts& facts, std::string_view path) {
  Encoder to;
  to.text(facts.package);
  to.list(facts.imports, write_import);
  to.list(facts.declares, [](Encoder& out, const std::string& name) { out.text(name); });
  to.list(facts.uses, write_use);
  const std::string bytes = to.take();
  Encoder sealed;
  sealed.number(seal_of(bytes, path));
  return sealed.take() + bytes;
}

FileFacts decode_facts(std::string_view bytes, std::string_view path) {
  Decoder from(bytes);
  if (from.number<std::uint64_t>() != seal_of(from.rest(), path)) {
    throw CorruptIndex("facts that are damaged");
  }
  FileFacts facts;
  facts.package = from.text();
  facts.imports = from.list<ImportFact>(read_import);
  facts.declares = from.list<std::string>([](Decoder& in) { return in.text(); });
  facts.uses = from.list<NameUse>(read_use);
  if (!from.rest().empty()) throw CorruptIndex("facts with something behind them");
  return facts;
}

bool look_alike_from_outside(FileFacts a, FileFacts b) {
  forget_uses(a);
  forget_uses(b);
  return a == b;
}

}  // namespace kestrix::index
