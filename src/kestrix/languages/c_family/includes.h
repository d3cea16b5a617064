#pragma once

#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// The #include directives of a file in source order. They are read by line: an include may stand
/// where the grammars know none. One that names a macro counts when the file defines the macro.
std::vector<ImportFact> includes_of(const SourceTree& tree);

}  // namespace kestrix::index
