#pragma once

#include <span>
#include <vector>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index::kotlin {

/// What the annotations mention that the tree does not show, because they are masked.
std::vector<Mention> hidden_mentions(const SourceTree& tree,
                                     std::span<const Declaration> declarations);

}  // namespace kestrix::index::kotlin
