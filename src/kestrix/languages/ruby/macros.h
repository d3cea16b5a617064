#pragma once

#include <string_view>

#include "kestrix/languages/code/rules.h"

namespace kestrix::index::ruby {

/// What the macros of Ruby and of its frameworks declare in the body of a class, which members they
/// hide, and which classes they name by a symbol: associations, routes.
void note_macro(const SourceTree& tree, TSNode call, std::string_view callee, MacroNotes& notes);

}  // namespace kestrix::index::ruby
