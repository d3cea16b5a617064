#pragma once

// What the JSON documents share.

#include <span>

#include "capi/answers/answers.h"
#include "capi/answers/json_writer.h"

namespace kestrix {

/// Number of the JSON form; raised when a reader of the old form would misread the new one.
inline constexpr int kJsonSchema = 2;

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

}  // namespace kestrix
