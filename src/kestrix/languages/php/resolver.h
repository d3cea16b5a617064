#pragma once

#include <cstdint>
#include <memory>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// How a PHP file names what it depends on; values of ImportFact::form. Namespaces are stored with
/// "." where PHP writes a backslash.
enum class PhpImport : std::uint16_t {
  kUse,        ///< a class, function or constant by its full name
  kInCode,     ///< no statement: the code spells the full name out
  kHere,       ///< a file, relative to the including file's folder
  kSomewhere,  ///< a file, relative to the including file's folder, else to the repository's top
};

/// A full name leads to the file whose namespace declares it, wherever autoload rules put that
/// file; names without one to the file that declares them in the namespace at hand.
std::unique_ptr<Resolver> make_php_resolver(const FileTable& files);

}  // namespace kestrix::index
