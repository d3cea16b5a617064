#pragma once

#include <cstdint>
#include <memory>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// `ImportFact::form` of Rust.
enum class RustImport : std::uint16_t {
  kUse = 0,      ///< "use a::{B, c}": module "a", names "B" and "c"; "pub use" hands them on
  kMod = 1,      ///< "mod x;": module "x", or "tests::x" within "mod tests { … }"
  kModFile = 2,  ///< the same with #[path]: module is the file, the one name is the module
  kInline = 3,   ///< "mod x { … }": no import, but where x is
  kPath = 4,     ///< "crate::a::b()" in code: module "crate::a", name "b", one use less
  kCrate = 5,    ///< "extern crate x"
};

/// Imports of Rust. The crates of the repository are what its Cargo.toml files and the usual
/// places of sources say; their modules are found from their roots by mod declarations.
///
/// A path leads to the file of the innermost module that it names, and, when that module only
/// hands the name on by pub use, also to the file that declares it. Crates outside of the
/// repository are no dependencies; a mod declaration without a file counts as unresolved.
std::unique_ptr<Resolver> make_rust_resolver(const FileTable& files);

}  // namespace kestrix::index
