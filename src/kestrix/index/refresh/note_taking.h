#pragma once

#include <string_view>

#include "kestrix/facts/file_notes.h"

namespace kestrix::index {

/// Takes the notes of one file from its decoded text. `is_document` as the file's row tells it.
FileNotes take_notes(std::string_view path, std::string_view text, bool is_document);

}  // namespace kestrix::index
