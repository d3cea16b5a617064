#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrix::index {

/// What a document's text says of itself, taken while it is indexed.
struct DocumentFacts {
  std::uint32_t lines = 0;       ///< those that are not blank
  std::uint32_t code_lines = 0;  ///< in fences or indented blocks
  std::uint32_t commands = 0;    ///< code lines to be typed into a shell
  std::uint32_t words = 0;
  std::uint32_t addressed = 0;          ///< words that speak to the reader: "you", "your"
  std::uint32_t outward_links = 0;      ///< to other sites
  std::uint32_t numbered_headings = 0;  ///< steps: "2. Add the field"
  std::vector<std::uint32_t> headings;  ///< hashes of their texts, in source order; the first ones
  std::vector<std::string> links;       ///< targets within the repository as written; ascending
  std::vector<std::string> names;       ///< what looks like a path or a type's name; ascending

  friend bool operator==(const DocumentFacts&, const DocumentFacts&) = default;
};

}  // namespace kestrix::index
