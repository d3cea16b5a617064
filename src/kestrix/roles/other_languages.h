#pragma once

#include <string_view>

#include "kestrix/languages/conventions.h"

namespace kestrix {

/// How files of a language are named, by the path's ending: those of the language's own row, or of
/// the languages that nothing here reads. Null when neither knows the ending.
const index::Conventions* conventions_of(std::string_view path);

}  // namespace kestrix
