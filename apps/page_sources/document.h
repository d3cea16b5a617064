#pragma once

// What the JSON documents share.

#include <span>

#include "apps/page_sources/answers.h"
#include "apps/page_sources/json_writer.h"

namespace kestrix::program {

/// Opens a document with the members that tell of the program alone: `schema`, `program`.
void begin_document(JsonWriter& json);

/// Opens a document about a repository: also `repository`, `revision`, `clean`, `left_out` and
/// `warnings`.
void begin_document(JsonWriter& json, const About& about);

/// A member that is a list of files with their reasons.
void write_picks(JsonWriter& json, std::string_view key, std::span<const Pick> picks);

/// A member that is a list of reasons.
void write_reasons(JsonWriter& json, std::span<const Reason> reasons);

/// A member that is a list of texts.
void write_texts(JsonWriter& json, std::string_view key, std::span<const std::string> texts);

/// A member that is a number.
void write_number(JsonWriter& json, std::string_view key, std::uint64_t number);

/// A member that is a text.
void write_text(JsonWriter& json, std::string_view key, std::string_view text);

}  // namespace kestrix::program
