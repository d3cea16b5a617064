#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/store/content_hash.h"

namespace kestrix::index {

/// What facts were taken from.
struct FactsOrigin {
  std::string_view path;
  ContentHash content{};
};

/// All that resolvers read of a file's facts, as compact bytes. Symbols are left out: they are
/// stored by themselves.
std::string encode_facts(const FileFacts& facts, const FactsOrigin& origin);

/// The inverse; `symbols` is empty. Throws `CorruptIndex` when `bytes` are no encoded facts, or
/// those of another file or of another state of it.
FileFacts decode_facts(std::string_view bytes, const FactsOrigin& origin);

/// A symbol in its encoded form.
struct SymbolView {
  SymbolKind kind;
  std::string_view name;
  std::string_view signature;
  std::uint32_t line;
};

/// The symbols of one file; "" when there are none.
std::string encode_symbols(std::span<const SymbolFact> symbols);

/// The inverse. Views into `bytes`. Throws `CorruptIndex` when they are no encoded symbols.
std::vector<SymbolView> decode_symbols(std::string_view bytes);

/// Whether other files see the same in both: all but how often names are used and where imports
/// stand.
bool look_alike_from_outside(FileFacts a, FileFacts b);

}  // namespace kestrix::index
