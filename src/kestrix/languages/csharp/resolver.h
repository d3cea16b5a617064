#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// How a C# file names what it depends on; values of ImportFact::form. The module is a dotted name.
/// `level` is 1 for a directive inside of a namespace, whose name may be relative to that one. The
/// alias of a directive is its only ImportedName.
enum class CSharpImport : std::uint16_t {
  kNamespace,        ///< "using N;"
  kStatic,           ///< "using static N.Type;"
  kAlias,            ///< "using X = N.Type;", or of a namespace
  kGlobalNamespace,  ///< the same for all files of the project
  kGlobalStatic,
  kGlobalAlias,
  kInCode,  ///< no directive: the code spells out a name of several parts
};

/// FileFacts::declares holds types by their full names. A generic type ends in "`" and the number
/// of its parameters ("N.List`1"), here as in FileFacts::uses.
inline constexpr char kArityMark = '`';
/// Stands before the name of a declared extension method ("N.Class:Method"), and starts the used
/// name of a method that is called on something.
inline constexpr char kMethodMark = ':';
/// Starts a used name that is an attribute's, where "Name" may mean the type "NameAttribute".
inline constexpr char kAttributeMark = '[';

/// Prefix, in FileFacts::declares, of a type that may have parts in other files.
inline constexpr std::string_view kPartial = "partial ";

/// Names of C# lead to the files that declare them, wherever these lie: a name is looked up in the
/// file's namespaces and those around them, then in those that directives of the file or global
/// ones of its project name. A directive alone leads nowhere. A file sees what its project and
/// those that this one refers to declare. A partial type leads to all of its parts, and each of
/// them to the others.
///
/// A binding for ":Method" stands for the one extension method of that name.
///
/// What the repository declares in System is seen by files of that namespace only.
std::unique_ptr<Resolver> make_csharp_resolver(const FileTable& files);

}  // namespace kestrix::index
