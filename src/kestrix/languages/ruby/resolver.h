#pragma once

#include <cstdint>
#include <memory>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// How a Ruby file names a file; values of ImportFact::form.
enum class RubyImport : std::uint16_t {
  kLoadPath,  ///< require and autoload: below a folder of the load path
  kRelative,  ///< require_relative: from the file's own folder
};

/// Files by the paths that they are required by, and constants by the file that declares them. The
/// load path is `lib`, `test` and `spec` of each folder above the requiring file, and the top.
///
/// `FileFacts::declares` holds full names ("App::User"), `FileFacts::uses` names as they are used;
/// they are looked up from the innermost namespace of the file outwards. A name belongs
/// to the file whose path it makes (app/user.rb), else to the only file that declares it, provided
/// that file is named after something that it declares or lies in the name's namespace.
std::unique_ptr<Resolver> make_ruby_resolver(const FileTable& files);

}  // namespace kestrix::index
