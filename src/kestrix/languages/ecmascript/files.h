#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestrix/languages/resolver.h"

namespace kestrix::index::ecmascript {

/// Whose rules a look-up follows: TypeScript takes a source before what it compiles to.
enum class Dialect { kJavaScript, kTypeScript };

Dialect dialect_of(std::string_view path);

/// Whether a path is a declaration file (.d.ts and its kin).
bool is_declaration(std::string_view path);

/// A path without the extension of a script or declaration; the path itself when it has none.
std::string_view without_extension(std::string_view path);

/// The file that a path without a package means: the path as written, with an extension that the
/// dialect tries, or the source of the `.js` that is written. Constant number of look-ups.
std::optional<FileId> find_file(const FileTable& files, const std::string& path, Dialect dialect);

/// The index file of a folder.
std::optional<FileId> find_index(const FileTable& files, std::string_view folder, Dialect dialect);

}  // namespace kestrix::index::ecmascript
