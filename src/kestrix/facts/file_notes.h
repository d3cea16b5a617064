#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kestrix/facts/document_facts.h"

namespace kestrix::index {

/// What few files have to say beside their facts, taken from their text while it is indexed.
struct FileNotes {
  std::optional<DocumentFacts> document;  ///< of prose
  std::vector<std::string> documents;     ///< of a source file: the documents that it names
  std::string attributes;                 ///< of a .gitattributes: its text
  std::vector<std::string> holders;       ///< of a licence: words of those who hold the copyright
  std::vector<std::string> keys;          ///< of a file of keys and values: the first keys, with
                                          ///< "." between their parts; ascending
  std::uint64_t content = 0;              ///< hash of the text, where it may be a copy; else 0

  bool empty() const { return *this == FileNotes{}; }
  friend bool operator==(const FileNotes&, const FileNotes&) = default;
};

}  // namespace kestrix::index
