#pragma once

#include <optional>
#include <string_view>

#include "kestrix/languages/resolver.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index::ecmascript {

/// What an assignment exports by the older way of modules.
struct Export {
  std::string_view name;    ///< kSoleExport for "module.exports = …"
  std::string_view target;  ///< "exports.name"
  TSNode value;
};

/// "a" of "exports.a" and "module.exports.a"; "" for anything else.
std::string_view exports_member(std::string_view target);

/// "exports.a = …", "module.exports = …", "exports = module.exports = …"; none for others.
std::optional<Export> exported_by(const SourceTree& tree, TSNode assignment);

/// What the exported value is called in the file: of all of the module its own name, else
/// "default"; of a single name what is assigned to ("exports.name"), for the file has no such name.
std::string_view name_of_export(const SourceTree& tree, const Export& exported);

/// Whether the value is the file's own: "exports.name = void 0" only goes before what is.
bool is_declared(const SourceTree& tree, const Export& exported);

/// require("…"), require("…").name, await import("…").
bool is_import(const SourceTree& tree, TSNode value);

}  // namespace kestrix::index::ecmascript
