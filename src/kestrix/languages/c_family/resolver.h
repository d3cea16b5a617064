#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// `ImportFact::form` of C and C++.
enum class IncludeForm : std::uint16_t { kQuoted = 0, kAngled = 1 };

/// Whether a header of that name belongs to the language or to the operating system ("vector",
/// "string.h", "sys/types.h").
bool is_system_header(std::string_view name);

/// Includes of C and C++. A name leads, in this order, to
///
/// - a quoted one: the file of that name as seen from the including file's own folder;
/// - the include folders of a compile_commands.json in the repository;
/// - the only file whose path ends in it;
/// - the folders above the including file, and "include" and "src" below each of them;
/// - of the files whose paths end in it the nearest one, and of those that are as near the one
///   whose root most other includes start from.
///
/// System headers are met in the folders of compile_commands.json, and without angle brackets or
/// with a folder ("<sys/types.h>") in the folders above the file; nowhere else. A bare name in
/// angle brackets needs a root that something else speaks for. Quoted names that lead nowhere count
/// as unresolved, and so do angled ones below a folder of headers that others find here.
std::unique_ptr<Resolver> make_include_resolver(const FileTable& files);

}  // namespace kestrix::index
