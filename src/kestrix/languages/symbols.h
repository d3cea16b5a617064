#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// The longest signature kept, in bytes; a longer one is cut between two characters.
inline constexpr std::size_t kLongestSignature = 500;

/// Whether a name is written as constants are: at least one upper-case letter, no lower-case one.
bool is_upper_case(std::string_view name);

/// The text from `start` to `end` on one line: without comments, runs of white space as one space,
/// none inside of brackets that were broken over lines, and without a closing "{", ":" or "=".
std::string head_of(const SourceTree& tree, std::uint32_t start, std::uint32_t end);

/// The symbol that a match declares; none when it declares none.
///
/// A match declares one when it captures the declaration as "@class", "@interface", "@constant",
/// "@variable" or "@binding" (a constant when its name is upper-case, else a variable) and its name
/// as "@name". The head reaches from "@head", else from the declaration's start, up to "@body",
/// else to the declaration's end.
std::optional<SymbolFact> symbol_of(const SourceTree& tree, const Match& match);

/// Adds the symbol that a match declares, unless the symbol before it has its name and line: of
/// patterns that fit the same declaration the first one counts.
void add_symbol(const SourceTree& tree, const Match& match, FileFacts& facts);

}  // namespace kestrix::index
