#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrix::index {

/// Blanks the macros that stand where the grammars of C and C++ expect none: between "class" and
/// the class's name ("class EXPORT Name {"), and at the start of a line before a declaration that
/// starts with a keyword ("BEGIN_NAMESPACE" before "namespace a {"). Left in, one of them makes the
/// parser misread the whole declaration. None when there is nothing to blank; else a text of equal
/// length. One pass over the lines.
std::optional<std::string> mask_macros(std::string_view text);

}  // namespace kestrix::index
