#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrix {

/// Whether a name is that of a licence's text: LICENSE, COPYING, license.txt, FONT-LICENSE,
/// COPYRIGHT …
bool is_licence_path(std::string_view path);

/// The words that name who holds the copyright, in lower case, ascending, each once; empty when the
/// text names nobody.
std::vector<std::string> copyright_holders(std::string_view text);

}  // namespace kestrix
