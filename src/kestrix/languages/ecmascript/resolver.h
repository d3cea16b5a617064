#pragma once

#include <cstdint>
#include <memory>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

namespace ecmascript {

/// How an import is written (ImportFact::form).
enum class Form : std::uint16_t {
  kImport,   ///< import … from, import x = require(…)
  kExport,   ///< export … from
  kRequire,  ///< require(…)
  kDynamic,  ///< import(…), also in types
  kOwn,      ///< no import: the file exports a name of its own under another one
  kGlob,     ///< import.meta.glob(…): a pattern for files
};

}  // namespace ecmascript

/// Imports of JavaScript and TypeScript, as bundlers and the TypeScript compiler find them:
///
/// - relative paths, with and without extension, `.js` written for `.ts`, folders through their
///   package.json or index file;
/// - `paths` and `baseUrl` of the nearest tsconfig.json or jsconfig.json, with what it extends;
/// - patterns for files, relative ones and those from the project's folder or its sources;
/// - `imports` and `exports` of package.json files, packages of the same workspace by their name.
///   What a package.json names and a build has not made yet falls back to its source.
///
/// An import of a name from a file that only hands it on leads to that file and to the one that the
/// name comes from, one hop further.
std::unique_ptr<Resolver> make_ecmascript_resolver(const FileTable& files);

}  // namespace kestrix::index
