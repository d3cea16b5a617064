#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/facts/document_facts.h"

namespace kestrix::index {

/// Reads a document line by line: Markdown, reStructuredText, AsciiDoc, Org, plain text, by the
/// path's ending. Linear in the text; lists are cut to a fixed length.
DocumentFacts read_document(std::string_view path, std::string_view text);

/// The documents that a source text names ("see docs/busy.md"), as written; ascending, each once.
/// The files that every repository has, as its README, are none.
std::vector<std::string> documents_named_in(std::string_view text);

/// Whether a text is prose, whatever its file is called: lines of words, few signs among them.
bool is_prose(std::string_view text);

}  // namespace kestrix::index
