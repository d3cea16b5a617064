#pragma once

#include <memory>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// Imports of Python, as its import system sees the repository from the importing file:
///
/// - relative imports from the file's own package;
/// - absolute ones from the folder that holds the file's outermost package (of a file outside of
///   packages, its own folder), the folders above it, the repository's top with its src/ and lib/,
///   and then from the source folders of projects elsewhere in the repository (those with a
///   pyproject.toml, setup.py or setup.cfg), examples and tests excepted;
/// - a name of the standard library or of a declared requirement is met at the top only, or in a
///   project of the repository.
///
/// Folders without __init__.py are packages too. `from a import b` leads to the submodule where
/// there is one.
std::unique_ptr<Resolver> make_python_resolver(const FileTable& files);

}  // namespace kestrix::index
