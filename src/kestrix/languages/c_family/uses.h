#pragma once

#include <string>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/lexis.h"

namespace kestrix::index {

/// The names of a C or C++ text that stand where a type, a function, a namespace or a macro may
/// stand, without `declared` (ascending), keywords and members. Ascending.
std::vector<NameUse> names_used(std::string_view text, const Lexis& lexis,
                                const std::vector<std::string>& declared);

}  // namespace kestrix::index
