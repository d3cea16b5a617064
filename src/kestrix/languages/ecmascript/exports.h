#pragma once

#include <optional>
#include <string_view>

#include "kestrix/languages/resolver.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index::ecmascript {

/// What an assignment exports by the older way of modules.
struct Export {
  std::string_view name;  ///< kSoleExport for "module.exports = …"
  TSNode value;
};

/// "a" of "exports.a" and "module.exports.a"; "" for anything else.
std::string_view exports_member(std::string_view target);

/// "exports.a = …", "module.exports = …", "exports = module.exports = …"; none for others.
std::optional<Export> exported_by(const SourceTree& tree, TSNode assignment);

/// What the exported value is called in the file: its own name, else that under which it is
/// exported, where that is all of the module: "default".
std::string_view name_of_export(const SourceTree& tree, const Export& exported);

/// require("…"), require("…").name, await import("…").
bool is_import(const SourceTree& tree, TSNode value);

}  // namespace kestrix::index::ecmascript
