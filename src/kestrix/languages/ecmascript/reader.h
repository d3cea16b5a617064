#pragma once

#include <string_view>

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/lexis.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index::ecmascript {

/// Words that announce a pattern which counts anywhere.
std::span<const std::string_view> keywords();

/// Comments, strings, templates and regular expressions.
extern const Lexis lexis;

/// Reads a file of JavaScript or TypeScript. Imported names are "default", a name, or "*"; what the
/// file hands on, by `export … from`, by exporting an imported name or through module.exports, is
/// marked. `declares` holds the exported names.
FileFacts read(const SourceTree& tree);

}  // namespace kestrix::index::ecmascript
