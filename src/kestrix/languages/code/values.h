#pragma once

#include <tree_sitter/api.h>

#include "kestrix/facts/declaration.h"
#include "kestrix/languages/code/rules.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// Notes in `as` what the initial value of a constant or variable shows: a literal table and its
/// size, an instance, a function. `parent` is the type of the node that holds the value.
void take_value(const CompiledRules& rules, const SourceTree& tree, TSNode value, TSSymbol parent,
                Declaration& as);

}  // namespace kestrix::index
