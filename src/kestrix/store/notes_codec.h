#pragma once

#include <string>
#include <string_view>

#include "kestrix/facts/file_notes.h"

namespace kestrix::index {

/// "" when there is nothing to note.
std::string encode_notes(const FileNotes& notes);

/// The inverse. Throws `CorruptIndex` when `bytes` are no encoded notes.
FileNotes decode_notes(std::string_view bytes);

}  // namespace kestrix::index
