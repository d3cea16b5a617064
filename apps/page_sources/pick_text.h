#pragma once

#include <span>
#include <string>
#include <string_view>

#include "apps/page_sources/output.h"

namespace kestrix::program {

/// The text within so many columns, "…" in place of what does not fit; all of it for 0. A character
/// counts as one column.
std::string cut_to(std::string_view text, std::size_t columns);

/// How many columns a text takes.
std::size_t columns_of(std::string_view text);

/// A text as a terminal dims it.
std::string dimmed(std::string_view text, const TextStyle& style);

/// One line for each file: its path, then its strongest reason, the reasons aligned.
void append_picks(std::string& out, std::string_view indent, std::span<const Pick> picks,
                  const TextStyle& style);

}  // namespace kestrix::program
