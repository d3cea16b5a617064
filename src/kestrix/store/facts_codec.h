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

/// All that resolvers read of a file's facts, as compact bytes. Symbols, declarations and mentions
/// are left out: they are stored by themselves.
std::string encode_facts(const FileFacts& facts, const FactsOrigin& origin);

/// The inverse; what is left out is empty. Throws `CorruptIndex` when `bytes` are no encoded facts,
/// or those of another file or of another state of it.
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

/// The declarations of one file; "" when there are none.
std::string encode_declarations(std::span<const Declaration> declarations);

/// A declaration in its encoded form.
struct DeclarationView {
  std::string_view name;
  std::uint32_t line = 0;
  std::uint32_t last_line = 0;
  std::uint32_t container = 0;
  std::uint32_t size = 0;
  std::uint32_t fields = 0;
  std::uint32_t methods = 0;
  std::uint32_t abstract_methods = 0;
  DeclarationKind kind = DeclarationKind::kClass;
  ValueShape shape = ValueShape::kUnknown;
  bool exported = false;
  bool is_abstract = false;
  std::string_view encoded_bases;

  /// What it extends and implements, as written.
  std::vector<std::string_view> bases() const;
};

/// The inverse. Views into `bytes`. Throws `CorruptIndex` when they are no encoded declarations.
std::vector<DeclarationView> decode_declarations(std::string_view bytes);

/// The mentions of one file, which are grouped by name; "" when there are none.
std::string encode_mentions(std::span<const Mention> mentions, const FactsOrigin& origin);

/// The inverse; throws like `decode_facts`.
std::vector<Mention> decode_mentions(std::string_view bytes, const FactsOrigin& origin);

/// Whether names that lead into a file lead to the same declarations in both states of it: those
/// have the same names, kinds and holders, and the same bases.
bool declare_alike(std::span<const DeclarationView> a, std::span<const DeclarationView> b);

/// Whether other files see the same in both: all but how often names are used and where imports
/// stand.
bool look_alike_from_outside(FileFacts a, FileFacts b);

}  // namespace kestrix::index
