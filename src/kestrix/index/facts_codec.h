#pragma once

#include <string>
#include <string_view>

#include "kestrix/index/facts.h"

namespace kestrix::index {

/// All that resolvers read of the facts of the file at `path`, as compact bytes. Symbols are left
/// out: the store has a table for them.
std::string encode_facts(const FileFacts& facts, std::string_view path);

/// The inverse; `symbols` is empty. Throws `CorruptIndex` when `bytes` are no encoded facts, or
/// those of another path.
FileFacts decode_facts(std::string_view bytes, std::string_view path);

/// Whether other files see the same in both: all but how often names are used and where imports
/// stand.
bool look_alike_from_outside(FileFacts a, FileFacts b);

}  // namespace kestrix::index
