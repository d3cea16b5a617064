#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// One crate of the repository: a root file and what its package calls other crates.
struct RustCrate {
  FileId root;
  std::string package;  ///< folder of its Cargo.toml
};

struct RustCrates {
  std::vector<RustCrate> crates;  ///< libraries before programs before tests, examples, benches
  std::unordered_map<std::string, std::size_t, SeededHash> libraries;  ///< by name, "-" as "_"
  /// Names that the package of a folder gives to crates ("x = { package = \"y\" }").
  std::unordered_map<std::string, std::unordered_map<std::string, std::string, SeededHash>,
                     SeededHash>
      renamed;
};

/// Reads the Cargo.toml files. Where there is none, src/lib.rs, src/main.rs, lib.rs and main.rs
/// are taken as roots.
RustCrates rust_crates_of(const FileTable& files);

}  // namespace kestrix::index
