#pragma once

#include <string_view>

namespace kestrix::index::ruby {

/// Whether a constant is the language's own or a well-known library's, so that a file which opens
/// it adds to it rather than declares it. A library itself has such files where their names say.
bool is_of_others(std::string_view name, std::string_view path);

}  // namespace kestrix::index::ruby
