# Writes the query file `input` as the constant <name>_query into the header `output`.

file(READ ${input} text)
file(WRITE ${output} "#pragma once

#include <string_view>

namespace kestrix::index {

inline constexpr std::string_view ${name}_query = R\"scm(${text})scm\";

}  // namespace kestrix::index
")
