#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// How a Swift file names what it imports; values of ImportFact::form. The module is the module's
/// name, without the declaration that an import may add to it.
enum class SwiftImport : std::uint16_t {
  kModule,
  kReexport,  ///< "@_exported": those who import the file's module have this one, too
};

/// Prefix, in FileFacts::declares, of a type of another file that this one extends.
inline constexpr std::string_view kExtended = "+";

/// Files of Swift know what the files of their module declare without naming them, and what the
/// modules declare that they import. A module is a target of a Package.swift; what stands in none
/// is one module. Imports of other modules lead nowhere, and no file to all of another module: an
/// edge is a name that the other file declares and this one uses.
std::unique_ptr<Resolver> make_swift_resolver(const FileTable& files);

}  // namespace kestrix::index
