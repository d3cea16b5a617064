#pragma once

#include <optional>

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// What declarations of C and C++ declare; see CodeRules::named. The languages differ in what
/// "static" hides: C++ is the language of headers, too.
std::optional<Named> named_in_c(const SourceTree& tree, TSNode declaration, TSNode parent,
                                DeclarationKind kind);
std::optional<Named> named_in_cpp(const SourceTree& tree, TSNode declaration, TSNode parent,
                                  DeclarationKind kind);

}  // namespace kestrix::index
