#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// How a Java or Kotlin file names what it imports; values of ImportFact::form. The module is the
/// dotted name, without ".*".
enum class JvmImport : std::uint16_t {
  kName,        ///< one type, static member, function or property
  kEverything,  ///< "a.b.*": all of a package, or all members of a type
  kInCode,      ///< no import: the name is spelled out in the code
};

/// Prefix, in FileFacts::declares, of what a Kotlin file declares for one platform only, in place
/// of a declaration that all platforms share.
inline constexpr std::string_view kActual = "actual ";

/// Imports of Java and Kotlin, which see each other: dotted names lead to the file whose package
/// declares their longest declared prefix (so nested types and members lead to the file around
/// them), wildcards to the files that declare the names used, and so do names of the own package.
///
/// A file of Kotlin functions is also known as the class that they are compiled to (util.kt as
/// UtilKt); scripts declare nothing for others. A name that several source trees declare is that of
/// the nearest tree. Product code reaches nothing in folders of tests and examples, and a `java` or
/// `kotlin` package is local only to files of such a package.
std::unique_ptr<Resolver> make_jvm_resolver(const FileTable& files);

}  // namespace kestrix::index
