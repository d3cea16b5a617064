#pragma once

#include <string_view>

#include "kestrix/facts/facts.h"

namespace kestrix::index::rust {

/// Whether the attributes that end the text make what follows a test, or part of one.
bool is_for_tests(std::string_view before);

/// Leaves out of the annotations those that only speak to the compiler.
void drop_plain_attributes(FileFacts& facts);

}  // namespace kestrix::index::rust
