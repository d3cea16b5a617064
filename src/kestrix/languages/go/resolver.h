#pragma once

#include <cstdint>
#include <memory>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// `ImportFact::form` of Go.
enum class GoImport : std::uint16_t { kNamed = 0, kDot = 1, kBlank = 2 };

/// Imports of Go. A path belongs to the module of the repository whose path is its longest prefix
/// (the importing file's own module, what its go.mod replaces by a folder, then any other), or to
/// a vendor folder above the file. It leads to a folder: the edges go to the files of it that
/// declare the names used. A blank import leads to the files that run something on import.
///
/// A file also depends on the files of its own package whose names it uses; tests see the package
/// that they test, no package sees its tests.
///
/// Imports below the own module that lead to no folder count as unresolved.
std::unique_ptr<Resolver> make_go_resolver(const FileTable& files);

}  // namespace kestrix::index
